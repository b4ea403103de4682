// The render targets as the driver sees them, and what happens to them while a swap is under way: then the program is
// waiting, so what changes is the library's doing.
#pragma once

#include "Entries.h"

namespace android::rig {

/** Puts observers in front of the driver's entries that make and attach textures. Textures are told apart by name: a
 * program with several unrelated contexts gets them mixed up. */
void observeRenderTargets(GlTable* gl);

/**
 * Around a swap of the program. When framebuffers come out of it with other textures than they went in with, that is a
 * resolution switch: it is counted, and the targets before and after are added as a line of JSON to
 * orvel/switches.<pid>.jsonl.
 */
class SwapScope {
public:
    SwapScope();
    ~SwapScope();
    SwapScope(const SwapScope&) = delete;
    SwapScope& operator=(const SwapScope&) = delete;
};

} // namespace android::rig
