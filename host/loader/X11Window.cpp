#include "X11Window.h"

#include "Loader.h"
#include "LogFile.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

#include <X11/Xlib-xcb.h> // defines macros with everyday names: last
#include <xcb/xcb.h>

namespace android::rig {

using desktop::WindowGeometry;

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

/** Waits for an answer, so that an error does not reach the program's error handler, which may end it. */
bool succeeds(xcb_connection_t* server, xcb_void_cookie_t request) {
    return !Reply<xcb_generic_error_t>(xcb_request_check(server, request));
}

} // namespace

xcb_connection_t* serverOf(void* xlibDisplay) {
    if (xlibDisplay) {
        return XGetXCBConnection(static_cast<Display*>(xlibDisplay));
    }
    static xcb_connection_t* const own = xcb_connect(nullptr, nullptr);
    return own; // one that could not be opened answers every request with an error
}

WindowGeometry X11Window::geometry() const {
    const std::lock_guard lock(mMutex);
    return mOwnWindow ? mBuffers : desktop::kUnknownGeometry;
}

int32_t X11Window::setBuffersGeometry(const WindowGeometry& wanted) {
    const std::lock_guard lock(mMutex);
    if (!mOwnWindow) {
        return -ENODEV;
    }
    if (wanted.width > kLargestWindow || wanted.height > kLargestWindow ||
        (wanted.format != 0 && wanted.format != mBuffers.format)) {
        return -EINVAL;
    }
    WindowGeometry size = wanted;
    const bool followsProgram = wanted.width == 0;
    if (followsProgram && !askProgramWindow(&size)) {
        return -ENODEV;
    }
    const WindowGeometry before = mBuffers;
    if (!resize(size)) {
        return -EIO;
    }
    mFollowsProgram = followsProgram;
    if (mBuffers != before) {
        reportWindowChange(mBuffers);
    }
    return 0;
}

EGLSurface X11Window::createSurface(EGLDisplay display, EGLConfig config, const EGLint* attribs) {
    const std::lock_guard lock(mMutex);
    if (mSurface != EGL_NO_SURFACE) {
        return refuseSurface(display, config);
    }
    makeOwnWindow();
    // Without a window of our own the driver gets the program's: what is wrong with that it can say best.
    const EGLNativeWindowType window = mOwnWindow ? mOwnWindow : mProgramWindow;
    mSurface = orNothing(gConnection.egl.eglCreateWindowSurface)(display, config, window, attribs);
    if (mSurface != EGL_NO_SURFACE) {
        mBuffers.format = formatOf(display, config);
    } else if (mOwnWindow) {
        succeeds(mServer, xcb_destroy_window_checked(mServer, mOwnWindow));
        mOwnWindow = 0;
    }
    return mSurface;
}

// Our window goes with the program's, not before: the driver may still speak of it. A next surface gets another one.
void X11Window::surfaceDestroyed() {
    const std::lock_guard lock(mMutex);
    mSurface = EGL_NO_SURFACE;
    mOwnWindow = 0;
}

EGLSurface X11Window::driverSurface() const {
    const std::lock_guard lock(mMutex);
    return mSurface;
}

void X11Window::settle() {
    const std::lock_guard lock(mMutex);
    WindowGeometry size;
    if (mOwnWindow && mFollowsProgram && askProgramWindow(&size)) {
        resize(size);
    }
}

// Not before: a program that waits until its window is exposed would wait for ever if ours lay over it from the start.
void X11Window::show() {
    const std::lock_guard lock(mMutex);
    if (mOwnWindow && !mIsShown) {
        mIsShown = succeeds(mServer, xcb_map_window_checked(mServer, mOwnWindow));
    }
}

bool X11Window::askProgramWindow(WindowGeometry* size) const {
    xcb_generic_error_t* error = nullptr;
    const Reply<xcb_get_geometry_reply_t> answer(
        xcb_get_geometry_reply(mServer, xcb_get_geometry(mServer, mProgramWindow), &error));
    std::free(error);
    if (!answer) {
        return false;
    }
    size->width = answer->width;
    size->height = answer->height;
    return true;
}

void X11Window::makeOwnWindow() {
    WindowGeometry size;
    if (!askProgramWindow(&size)) {
        RIG_LOGW("window 0x%x cannot be resized: the X server does not know it", mProgramWindow);
        return;
    }
    const uint32_t window = xcb_generate_id(mServer);
    const bool made = succeeds(
        mServer, xcb_create_window_checked(mServer, XCB_COPY_FROM_PARENT, window, mProgramWindow, 0, 0,
                                           static_cast<uint16_t>(size.width), static_cast<uint16_t>(size.height), 0,
                                           XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr));
    if (!made) {
        RIG_LOGW("window 0x%x cannot be resized: no window fits into it", mProgramWindow);
        return;
    }
    mOwnWindow = window;
    mIsShown = false;
    mFollowsProgram = true;
    mBuffers = size;
}

bool X11Window::resize(const WindowGeometry& size) {
    if (size.width == mBuffers.width && size.height == mBuffers.height) {
        return true;
    }
    const uint32_t values[] = {static_cast<uint32_t>(size.width), static_cast<uint32_t>(size.height)};
    if (!succeeds(mServer, xcb_configure_window_checked(mServer, mOwnWindow,
                                                        XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values))) {
        return false;
    }
    mBuffers.width = size.width;
    mBuffers.height = size.height;
    return true;
}

} // namespace android::rig
