#include "ProbeContext.h"

#include "LogFile.h"

namespace android::rig {

namespace {

EGLContext createContext(const egl_t& egl, EGLDisplay display) {
    const EGLint configAttribs[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT, EGL_SURFACE_TYPE, 0, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint configs = 0;
    if (!egl.eglChooseConfig(display, configAttribs, &config, 1, &configs) || configs < 1) {
        return EGL_NO_CONTEXT;
    }
    for (const EGLint version : {3, 2}) {
        const EGLint contextAttribs[] = {EGL_CONTEXT_MAJOR_VERSION, version, EGL_NONE};
        if (EGLContext context = egl.eglCreateContext(display, config, EGL_NO_CONTEXT, contextAttribs)) {
            return context;
        }
    }
    return EGL_NO_CONTEXT;
}

// Every way out leaves the thread as it was: nothing current, no error pending, the display closed again.
std::string askOn(EGLDisplay display, egl_connection_t* cnx, const GlTable& gl) {
    const egl_t& egl = cnx->egl;
    std::string extensions;
    if (EGLContext context = createContext(egl, display)) {
        if (egl.eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context)) {
            if (const GLubyte* answer = gl.glGetString(GL_EXTENSIONS)) {
                extensions = reinterpret_cast<const char*>(answer);
            }
            egl.eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        }
        egl.eglDestroyContext(display, context);
    }
    return extensions;
}

} // namespace

std::string askForExtensions(egl_connection_t* cnx, const GlTable& gl) {
    const egl_t& egl = cnx->egl;
    std::string extensions;
    if (egl.eglGetPlatformDisplay && egl.eglInitialize && egl.eglChooseConfig && egl.eglCreateContext &&
        egl.eglDestroyContext && egl.eglMakeCurrent && egl.eglTerminate && egl.eglGetError && gl.glGetString) {
        EGLDisplay display = egl.eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        if (display != EGL_NO_DISPLAY && egl.eglInitialize(display, &cnx->major, &cnx->minor)) {
            extensions = askOn(display, cnx, gl);
            egl.eglTerminate(display);
        }
        egl.eglGetError();
    }
    if (extensions.empty()) {
        RIG_LOGW("the driver gives no context without a window: extension entries count as missing");
    }
    return extensions;
}

} // namespace android::rig
