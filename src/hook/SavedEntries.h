// The driver's entries that the framework's hooks stand in for, as they were before.
#pragma once

#include <EGL/egldefs.h>

namespace android::orvel::hook {

/** Written at installation, before these hooks are live. */
struct SavedEntries {
    decltype(platform_impl_t::glGetString) glGetString;
    decltype(platform_impl_t::glGetStringi) glGetStringi;
    decltype(platform_impl_t::glGetIntegerv) glGetIntegerv;
    decltype(platform_impl_t::eglCreateContext) eglCreateContext;
    decltype(platform_impl_t::eglDestroyContext) eglDestroyContext;
    decltype(platform_impl_t::eglMakeCurrent) eglMakeCurrent;
    decltype(egl_t::eglGetProcAddress) eglGetProcAddress;
};
extern SavedEntries sSaved;

} // namespace android::orvel::hook
