// A GLES 3 context on a window that needs no display.
#pragma once

#include "Options.h"

#include <EGL/egl.h>

namespace sample {

class Window {
public:
    /** Makes the context current; ends the program when that cannot be done. */
    explicit Window(Size size);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void swap() { eglSwapBuffers(mDisplay, mSurface); }

private:
    EGLDisplay mDisplay = EGL_NO_DISPLAY;
    EGLSurface mSurface = EGL_NO_SURFACE;
    EGLContext mContext = EGL_NO_CONTEXT;
};

} // namespace sample
