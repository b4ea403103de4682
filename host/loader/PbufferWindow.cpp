#include "PbufferWindow.h"

#include "Loader.h"

#include <cerrno>

namespace android::rig {

using desktop::WindowGeometry;

namespace {

/** The one attribute of a window surface that decides what its pixels look like. */
EGLint colorSpaceOf(const EGLint* attribs) {
    EGLint colorSpace = EGL_GL_COLORSPACE_LINEAR;
    for (; attribs && attribs[0] != EGL_NONE; attribs += 2) {
        if (attribs[0] == EGL_GL_COLORSPACE) {
            colorSpace = attribs[1];
        }
    }
    return colorSpace;
}

} // namespace

PbufferWindow::PbufferWindow(int32_t width, int32_t height)
    : mOwn{width, height, WINDOW_FORMAT_RGBA_8888},
      mWanted(mOwn),
      mBuffers(mOwn) {}

WindowGeometry PbufferWindow::geometry() const {
    const std::lock_guard lock(mMutex);
    return mBuffers;
}

int32_t PbufferWindow::setBuffersGeometry(const WindowGeometry& wanted) {
    const std::lock_guard lock(mMutex);
    if (wanted.width > kLargestWindow || wanted.height > kLargestWindow ||
        (wanted.format != 0 && wanted.format != mOwn.format)) { // the surface's configuration settles the format
        return -EINVAL;
    }
    mWanted = wanted.width == 0 ? mOwn : WindowGeometry{wanted.width, wanted.height, mOwn.format};
    if (mSurface == EGL_NO_SURFACE) {
        mBuffers = mWanted;
        return 0;
    }
    return isCurrentHere() ? makeAnew() : 0;
}

EGLSurface PbufferWindow::createSurface(EGLDisplay display, EGLConfig config, const EGLint* attribs) {
    const std::lock_guard lock(mMutex);
    if (mSurface != EGL_NO_SURFACE) {
        return refuseSurface(display, config);
    }
    mDisplay = display;
    mConfig = config;
    mColorSpace = colorSpaceOf(attribs);
    mSurface = makePbuffer();
    if (mSurface == EGL_NO_SURFACE) {
        return EGL_NO_SURFACE;
    }
    mOwn.format = mWanted.format = mBuffers.format = formatOf(display, config);
    return this;
}

void PbufferWindow::surfaceDestroyed() {
    const std::lock_guard lock(mMutex);
    mSurface = EGL_NO_SURFACE;
    mBuffers = mWanted;
}

EGLSurface PbufferWindow::driverSurface() const {
    const std::lock_guard lock(mMutex);
    return mSurface;
}

void PbufferWindow::settle() {
    const std::lock_guard lock(mMutex);
    if (mSurface != EGL_NO_SURFACE) {
        makeAnew();
    }
}

EGLSurface PbufferWindow::makePbuffer() const {
    const EGLint attribs[] = {EGL_WIDTH,         mWanted.width, EGL_HEIGHT, mWanted.height,
                              EGL_GL_COLORSPACE, mColorSpace,   EGL_NONE};
    return orNothing(gConnection.egl.eglCreatePbufferSurface)(mDisplay, mConfig, attribs);
}

bool PbufferWindow::isCurrentHere() const {
    const auto current = orNothing(gConnection.egl.eglGetCurrentSurface);
    return current(EGL_DRAW) == mSurface || current(EGL_READ) == mSurface;
}

int32_t PbufferWindow::makeAnew() {
    if (mWanted == mBuffers) {
        return 0;
    }
    const egl_t& egl = gConnection.egl;
    const EGLSurface made = makePbuffer();
    if (made == EGL_NO_SURFACE) {
        mWanted = mBuffers;
        return -ENOMEM;
    }
    if (isCurrentHere()) {
        const EGLSurface draw = egl.eglGetCurrentSurface(EGL_DRAW);
        const EGLSurface read = egl.eglGetCurrentSurface(EGL_READ);
        if (!egl.eglMakeCurrent(mDisplay, draw == mSurface ? made : draw, read == mSurface ? made : read,
                                egl.eglGetCurrentContext())) {
            egl.eglDestroySurface(mDisplay, made);
            mWanted = mBuffers;
            return -EIO;
        }
    }
    egl.eglDestroySurface(mDisplay, mSurface);
    mSurface = made;
    mBuffers = mWanted;
    reportWindowChange(mBuffers);
    return 0;
}

} // namespace android::rig
