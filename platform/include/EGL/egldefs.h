// The connection between the EGL loader and one driver.
#pragma once

#include <hooks.h>

namespace android {

struct egl_connection_t {
    enum { GLESv1_INDEX = 0, GLESv2_INDEX = 1 };

    gl_hooks_t* hooks[2]; // indexed by the two values above; null where the driver has no such library
    EGLint major;
    EGLint minor;
    egl_t egl;
    platform_impl_t platform;
};

} // namespace android
