#include "NullDriver.h"

namespace {

template <typename R, typename... Args>
R doNothing(Args...) {
    return R();
}

} // namespace

void connectNullDriver(android::egl_connection_t& connection, android::gl_hooks_t& gles2) {
#define GL_ENTRY(Result, name, params, args, providers) gles2.gl.name = doNothing;
#include <entries/gl_entries.in>
#undef GL_ENTRY
#define EGL_ENTRY(Result, name, params, args, providers)                                                               \
    connection.egl.name = doNothing;                                                                                   \
    connection.platform.name = doNothing;
#include <entries/egl_entries.in>
#undef EGL_ENTRY
    connection.platform.glGetString = doNothing;
    connection.hooks[android::egl_connection_t::GLESv2_INDEX] = &gles2;
}
