#include "Window.h"

#include "Gl.h"

#include <cstdlib>

namespace sample {

Window::Window(Size size) {
    setenv("EGL_PLATFORM", "surfaceless", /*overwrite=*/0);
    mDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (!eglInitialize(mDisplay, nullptr, nullptr)) {
        fail("EGL does not start: 0x%04x", eglGetError());
    }
    const EGLint wanted[] = {EGL_SURFACE_TYPE,
                             EGL_PBUFFER_BIT,
                             EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_ES3_BIT,
                             EGL_RED_SIZE,
                             8,
                             EGL_GREEN_SIZE,
                             8,
                             EGL_BLUE_SIZE,
                             8,
                             EGL_ALPHA_SIZE,
                             8,
                             EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(mDisplay, wanted, &config, 1, &count) || count == 0) {
        fail("no EGL configuration fits: 0x%04x", eglGetError());
    }
    const EGLint sizes[] = {EGL_WIDTH, size.width, EGL_HEIGHT, size.height, EGL_NONE};
    mSurface = eglCreatePbufferSurface(mDisplay, config, sizes);
    const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
    mContext = eglCreateContext(mDisplay, config, EGL_NO_CONTEXT, version);
    if (!eglMakeCurrent(mDisplay, mSurface, mSurface, mContext)) {
        fail("no GLES 3 context on a window of %dx%d: 0x%04x", size.width, size.height, eglGetError());
    }
}

Window::~Window() {
    eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(mDisplay, mContext);
    eglDestroySurface(mDisplay, mSurface);
    eglTerminate(mDisplay);
}

} // namespace sample
