// A frame ends where the game swaps: the thread's processor works before and after the driver's swap.
#pragma once

#include <EGL/egldefs.h>

namespace android::orvel::app {

EGLBoolean EGLAPIENTRY PlatSwapBuffersHooked(EGLDisplay display, EGLSurface surface);
EGLBoolean EGLAPIENTRY PlatSwapBuffersWithDamageKHRHooked(EGLDisplay display, EGLSurface surface, const EGLint* rects,
                                                          EGLint nRects);

} // namespace android::orvel::app
