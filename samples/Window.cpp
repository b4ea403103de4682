#include "Window.h"

#include "Gl.h"
#include "XWindow.h"

#include <cstdlib>
#include <sys/prctl.h>

namespace sample {

namespace {

/** Asks for a window that needs no display, which the rig offers and other systems do not. */
EGLNativeWindowType displaylessWindow(Size size) {
    using CreateWindow = EGLNativeWindowType(EGLAPIENTRYP)(EGLint width, EGLint height);
    const auto create = reinterpret_cast<CreateWindow>(eglGetProcAddress("orvelCreateWindow"));
    return create ? create(size.width, size.height) : EGLNativeWindowType();
}

EGLConfig chooseConfig(EGLDisplay display, EGLint surfaceType) {
    const EGLint wanted[] = {EGL_SURFACE_TYPE,
                             surfaceType,
                             EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_ES3_BIT,
                             EGL_RED_SIZE,
                             8,
                             EGL_GREEN_SIZE,
                             8,
                             EGL_BLUE_SIZE,
                             8,
                             EGL_ALPHA_SIZE,
                             surfaceType == EGL_WINDOW_BIT ? 0 : 8, // a screen shows no alpha
                             EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display, wanted, &config, 1, &count) || count == 0) {
        fail("no EGL configuration fits: 0x%04x", eglGetError());
    }
    return config;
}

} // namespace

Window::Window(const Options& options) {
    prctl(PR_SET_NAME, options.threadName.c_str());
    setenv("EGL_PLATFORM", options.x11 ? "x11" : "surfaceless", /*overwrite=*/0);
    mDisplay = eglGetDisplay(options.x11 ? xDisplay() : EGL_DEFAULT_DISPLAY);
    if (!eglInitialize(mDisplay, nullptr, nullptr)) {
        fail("EGL does not start: 0x%04x", eglGetError());
    }
    const EGLConfig config = chooseConfig(mDisplay, options.x11 ? EGL_WINDOW_BIT : EGL_PBUFFER_BIT);
    mSurface = makeSurface(options, config);
    const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
    mContext = eglCreateContext(mDisplay, config, EGL_NO_CONTEXT, version);
    if (!eglMakeCurrent(mDisplay, mSurface, mSurface, mContext)) {
        fail("no GLES 3 context on a window of %dx%d: 0x%04x", options.window.width, options.window.height,
             eglGetError());
    }
}

EGLSurface Window::makeSurface(const Options& options, EGLConfig config) {
    if (options.x11) {
        EGLint visual = 0;
        eglGetConfigAttrib(mDisplay, config, EGL_NATIVE_VISUAL_ID, &visual);
        const EGLNativeWindowType window = openXWindow(options.window, visual);
        const EGLSurface surface = eglCreateWindowSurface(mDisplay, config, window, nullptr);
        showXWindow(window);
        return surface;
    }
    if (const EGLNativeWindowType window = displaylessWindow(options.window)) {
        return eglCreateWindowSurface(mDisplay, config, window, nullptr);
    }
    const EGLint sizes[] = {EGL_WIDTH, options.window.width, EGL_HEIGHT, options.window.height, EGL_NONE};
    return eglCreatePbufferSurface(mDisplay, config, sizes);
}

Size Window::size() const {
    Size size;
    eglQuerySurface(mDisplay, mSurface, EGL_WIDTH, &size.width);
    eglQuerySurface(mDisplay, mSurface, EGL_HEIGHT, &size.height);
    return size;
}

Window::~Window() {
    eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(mDisplay, mContext);
    eglDestroySurface(mDisplay, mSurface);
}

} // namespace sample
