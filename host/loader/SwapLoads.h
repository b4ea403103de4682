// What the library makes at the end of a frame, while the program waits for its swap: a line of JSON for each frame in
// which it made something, in orvel/loads.<pid>.jsonl.
#pragma once

#include "Entries.h"

namespace android::rig {

/** Puts observers in front of the entries that make GL objects or fill them. */
void observeLoads(GlTable* gl);

/** The program swaps on this thread: what is made from now on is the library's. */
void beginLoads();

/** Before the driver swaps: writes down what was made. */
void endLoads();

} // namespace android::rig
