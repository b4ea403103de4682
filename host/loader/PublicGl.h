// The GLES entries that a program calls.
#pragma once

#include "Entries.h"

namespace android::rig {

/** Entries that the loader answers itself; all others jump straight through the thread's table. */
#define ORVEL_LOADER_GL(X)                                                                                             \
    X(glGetBooleanv)                                                                                                   \
    X(glGetFloatv)                                                                                                     \
    X(glGetIntegerv)                                                                                                   \
    X(glGetInteger64v)                                                                                                 \
    X(glGetString)                                                                                                     \
    X(glGetStringi)                                                                                                    \
    X(glShaderSource)

} // namespace android::rig

/** All public entries, for eglGetProcAddress and for the GLES library. */
extern "C" [[gnu::visibility("default")]] const android::gl_hooks_t orvelPublicGl;
