#include "app/OrvelSwapHooks.h"

#include "app/OrvelProcessorBase.h"
#include "app/OrvelRenderContext.h"
#include "base/OrvelGuard.h"
#include "next/OrvelNext.h"

namespace android::orvel::app {

namespace {

/** One swap with the frame's ends around it. The driver's answer is the game's, also when the swap failed. */
template <typename Swap>
EGLBoolean swapBetweenFrameEnds(Swap swap) {
    OrvelProcessorBase* const processor = OrvelRenderContextTLS::GetCurProcessor(gContextTls);
    if (!processor) {
        return swap();
    }
    guarded("end of frame", [processor] { processor->FrameEnd(); });
    const EGLBoolean result = swap();
    // A driver may call the game from within its swap, and the game may destroy the context there.
    if (OrvelRenderContextTLS::GetCurProcessor(gContextTls) == processor) {
        guarded("end of frame", [processor] { processor->PostFrameEnd(); });
    }
    return result;
}

} // namespace

EGLBoolean EGLAPIENTRY PlatSwapBuffersHooked(EGLDisplay display, EGLSurface surface) {
    return swapBetweenFrameEnds([=] { return next::platform.eglSwapBuffers(display, surface); });
}

EGLBoolean EGLAPIENTRY PlatSwapBuffersWithDamageKHRHooked(EGLDisplay display, EGLSurface surface, DamageRects rects,
                                                          EGLint nRects) {
    return swapBetweenFrameEnds([=] {
        if (!next::platform.eglSwapBuffersWithDamageKHR) { // the damage is a hint
            return next::platform.eglSwapBuffers(display, surface);
        }
        return next::platform.eglSwapBuffersWithDamageKHR(display, surface, rects, nRects);
    });
}

} // namespace android::orvel::app
