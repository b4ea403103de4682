// The application's contexts. A context is followed before the driver lets go of it or makes it current, and after the
// driver has created it, whatever the driver then answers.
#include "hook/OrvelHook.h"

#include "app/OrvelContextManager.h"
#include "base/OrvelGuard.h"
#include "hook/SavedEntries.h"

namespace android::orvel::hook::platformhook {

EGLContext EGLAPIENTRY PlatCreateContextHooked(EGLDisplay dpy, EGLConfig config, EGLContext share,
                                               const EGLint* attribs) {
    const EGLContext ctx = sSaved.eglCreateContext(dpy, config, share, attribs);
    if (ctx == EGL_NO_CONTEXT) {
        return ctx;
    }
    bool added = true; // what our own start trips over costs the game no context
    guarded("eglCreateContext",
            [ctx, &added] { added = OrvelContextManager::GetInstance().CreateAndAddRenderContext(ctx); });
    if (!added) {
        sSaved.eglDestroyContext(dpy, ctx);
        return EGL_NO_CONTEXT;
    }
    return ctx;
}

EGLBoolean EGLAPIENTRY PlatDestroyContextHooked(EGLDisplay dpy, EGLContext ctx) {
    guarded("eglDestroyContext", [ctx] { OrvelContextManager::GetInstance().EraseRenderContext(ctx); });
    return sSaved.eglDestroyContext(dpy, ctx);
}

EGLBoolean EGLAPIENTRY PlatMakeCurrentHooked(EGLDisplay dpy, EGLSurface draw, EGLSurface read, EGLContext ctx) {
    guarded("eglMakeCurrent", [ctx] { OrvelContextManager::GetInstance().MakeCurrentRenderContext(ctx); });
    return sSaved.eglMakeCurrent(dpy, draw, read, ctx);
}

} // namespace android::orvel::hook::platformhook
