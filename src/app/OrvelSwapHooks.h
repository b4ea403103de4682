// A frame ends where the game swaps: the thread's processor works before and after the driver's swap.
#pragma once

#include <EGL/egldefs.h>

namespace android::orvel::app {

/** Four numbers for each rectangle; whether they are constant is told differently by different versions of EGL. */
template <typename Entry>
struct DamageRectsOf;
template <typename Rects>
struct DamageRectsOf<EGLBoolean (*)(EGLDisplay, EGLSurface, Rects, EGLint)> {
    using type = Rects;
};
using DamageRects = DamageRectsOf<decltype(platform_impl_t::eglSwapBuffersWithDamageKHR)>::type;

EGLBoolean EGLAPIENTRY PlatSwapBuffersHooked(EGLDisplay display, EGLSurface surface);
EGLBoolean EGLAPIENTRY PlatSwapBuffersWithDamageKHRHooked(EGLDisplay display, EGLSurface surface, DamageRects rects,
                                                          EGLint nRects);

} // namespace android::orvel::app
