// A program's window on an X server.
#pragma once

#include "RigWindow.h"

#include <mutex>

struct xcb_connection_t;

namespace android::rig {

/**
 * The program draws to its own size on the screen; to give it buffers of another size the driver draws to a window of
 * the rig's own inside the program's, which can be resized without the program or the user taking part. Both have the
 * same size until buffers of another one are asked for.
 */
class X11Window : public RigWindow {
public:
    X11Window(xcb_connection_t* server, uint32_t programWindow) : mServer(server), mProgramWindow(programWindow) {}

    desktop::WindowGeometry geometry() const override;
    int32_t setBuffersGeometry(const desktop::WindowGeometry& wanted) override;
    EGLSurface createSurface(EGLDisplay display, EGLConfig config, const EGLint* attribs) override;
    void surfaceDestroyed() override;
    EGLSurface driverSurface() const override;
    void settle() override;
    void show() override;

private:
    // All under mMutex:
    bool askProgramWindow(desktop::WindowGeometry* size) const;
    void makeOwnWindow();
    bool resize(const desktop::WindowGeometry& size);

    mutable std::mutex mMutex;
    xcb_connection_t* const mServer;
    const uint32_t mProgramWindow;
    uint32_t mOwnWindow = 0; // 0: there is none, nothing can be resized
    bool mIsShown = false;
    bool mFollowsProgram = true;
    desktop::WindowGeometry mBuffers;
    EGLSurface mSurface = EGL_NO_SURFACE;
};

/** @return the X server of a program's display: its Xlib Display, or null for the one that DISPLAY names */
xcb_connection_t* serverOf(void* xlibDisplay);

} // namespace android::rig
