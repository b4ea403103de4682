// Repeats frames at an interval, and serves the game's screenshots at the size it asked for.
#pragma once

#include <EGL/egl.h>

namespace android {

// The two mechanisms' place in the system: the hooks call them already, they save and serve nothing yet.

/** Before the real swap: keeps a copy of the frame when the interval has passed. */
inline void saveFrame(EGLDisplay, EGLSurface) {}

/** After the real swap: presents a kept frame a second time. @return what the game is told of its swap */
inline EGLBoolean swapFrame(EGLDisplay, EGLSurface, EGLBoolean result) { return result; }

/** @return 1 when the read was served from a scaled copy, 0 when the caller must read from the driver */
inline int processGameCapture(int, int, int, int, unsigned, unsigned, void*) { return 0; }

} // namespace android
