// The table that a thread's GL calls go through.
#pragma once

#include "Entries.h"

/**
 * Never null: a thread without a context has the driver's own table. Exported for the GLES library; both are loaded
 * at a program's start, so the fastest way to a thread's own variable is open to them.
 */
extern "C" {
[[gnu::visibility("default"), gnu::tls_model("initial-exec")]] extern __thread const android::gl_hooks_t* orvelThreadGl;
}

namespace android::rig {

/** The calling thread has made a context current: its calls go the way that the library chooses. */
void enterContext();

/** The calling thread has no context any more. */
void leaveContext();

} // namespace android::rig
