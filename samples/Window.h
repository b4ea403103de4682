// A GLES 3 context on the game's window.
#pragma once

#include "Options.h"

#include <EGL/egl.h>

namespace sample {

class Window {
public:
    /** Names the calling thread and makes the context current on it; ends the program when that cannot be done. */
    explicit Window(const Options& options);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void swap() { eglSwapBuffers(mDisplay, mSurface); }

    /** Pixels of the buffers that are drawn to now; the system may have changed them. */
    Size size() const;

private:
    EGLSurface makeSurface(const Options& options, EGLConfig config);

    EGLDisplay mDisplay = EGL_NO_DISPLAY;
    EGLSurface mSurface = EGL_NO_SURFACE;
    EGLContext mContext = EGL_NO_CONTEXT;
};

} // namespace sample
