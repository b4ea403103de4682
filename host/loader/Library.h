// liborvel.so: opened, asked, and what came of it.
#pragma once

#include <EGL/OrvelStub.h>

namespace android::rig {

struct Library {
    OrvelStub* stub;                              // null when there is no library
    void (*setThreadSpecific)(const gl_hooks_t*); // null when there is no library
};
extern Library gLibrary; // written at the start, before any context

/**
 * Gives the process its identity under the system root, opens the library that ORVEL_LIBRARY names (default: the one
 * built beside the rig; "none": run without) and lets it install its hooks in the connection.
 */
void startLibrary(egl_connection_t* cnx);

} // namespace android::rig
