// A window that needs no display.
#pragma once

#include "RigWindow.h"

#include <mutex>

namespace android::rig {

/**
 * Its surface is a pbuffer, which is made anew at another size while the program's handle stays: the window itself is
 * that handle. New buffers come at once if the surface is current on the thread that asks, which asks between two
 * frames then (what it has drawn of a frame is lost); asked for from elsewhere they come with the drawing thread's next
 * frame.
 */
class PbufferWindow : public RigWindow {
public:
    PbufferWindow(int32_t width, int32_t height);

    desktop::WindowGeometry geometry() const override;
    int32_t setBuffersGeometry(const desktop::WindowGeometry& wanted) override;
    EGLSurface createSurface(EGLDisplay display, EGLConfig config, const EGLint* attribs) override;
    void surfaceDestroyed() override;
    EGLSurface driverSurface() const override;
    void settle() override;

private:
    // All under mMutex:
    EGLSurface makePbuffer() const;
    bool isCurrentHere() const;
    int32_t makeAnew();

    mutable std::mutex mMutex;
    desktop::WindowGeometry mOwn;     // what the window has when nobody asks for anything else
    desktop::WindowGeometry mWanted;  // what was asked for
    desktop::WindowGeometry mBuffers; // what is there
    EGLDisplay mDisplay = EGL_NO_DISPLAY;
    EGLConfig mConfig = nullptr;
    EGLint mColorSpace = EGL_GL_COLORSPACE_LINEAR;
    EGLSurface mSurface = EGL_NO_SURFACE;
};

} // namespace android::rig
