// A window as the rig hands it to the library and to the driver.
#pragma once

#include "Entries.h"

#include "DesktopWindow.h"

namespace android::rig {

/** Pixels each way: what desktop drivers draw to; beyond it Mesa promises a surface and crashes at the first draw. */
inline constexpr int32_t kLargestWindow = 16384;

/**
 * Lives as long as the process: the library may hold a window whose surface is long gone. It has one surface at a time,
 * as on a device.
 */
class RigWindow : public desktop::DesktopWindow {
public:
    /** @return the handle that the program is to hold, or EGL_NO_SURFACE with the driver's error */
    virtual EGLSurface createSurface(EGLDisplay display, EGLConfig config, const EGLint* attribs) = 0;

    /** The program's surface is gone. */
    virtual void surfaceDestroyed() {}

    /** @return what the driver knows the surface by at the moment */
    virtual EGLSurface driverSurface() const = 0;

    /** The calling thread is between two frames, or about to make the surface current: what was put off is done now. */
    virtual void settle() {}

    /** A frame is about to be swapped. */
    virtual void show() {}

    EGLNativeWindowType native() { return reinterpret_cast<EGLNativeWindowType>(static_cast<ANativeWindow*>(this)); }
};

/** @return the format of a window's buffers that fits a configuration */
int32_t formatOf(EGLDisplay display, EGLConfig config);

/** @return EGL_NO_SURFACE, with the error that the driver has for a window which cannot be drawn to */
EGLSurface refuseSurface(EGLDisplay display, EGLConfig config);

/** The buffers of a window have another size now, because somebody asked for it. */
void reportWindowChange(const desktop::WindowGeometry& geometry);

} // namespace android::rig
