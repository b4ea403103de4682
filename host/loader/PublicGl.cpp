#include "PublicGl.h"

#include "Loader.h"
#include "Observers.h"
#include "ThreadTable.h"

namespace android::rig {

namespace {

namespace forward {
#define GL_ENTRY(Result, name, params, args, providers)                                                                \
    Result GL_APIENTRY name params { return orNothing(orvelThreadGl->gl.name) args; }
#include <entries/gl_entries.in>
#undef GL_ENTRY
} // namespace forward

/** A query may be a program's first call of all, and the platform may answer otherwise than the driver. */
template <auto Slot>
struct Query;
template <typename R, typename... Params, R (*platform_impl_t::*Slot)(Params...)>
struct Query<Slot> {
    static R GL_APIENTRY call(Params... params) { return orNothing(connection().platform.*Slot)(params...); }
};

void GL_APIENTRY shaderSource(GLuint shader, GLsizei count, const GLchar* const* string, const GLint* length) {
    const ShaderTextScope scope(shader, count, string, length);
    forward::glShaderSource(shader, count, string, length);
}

constexpr gl_hooks_t publicGl() {
    gl_hooks_t table{};
#define GL_ENTRY(Result, name, params, args, providers) table.gl.name = forward::name;
#include <entries/gl_entries.in>
#undef GL_ENTRY
    table.gl.glGetBooleanv = Query<&platform_impl_t::glGetBooleanv>::call;
    table.gl.glGetFloatv = Query<&platform_impl_t::glGetFloatv>::call;
    table.gl.glGetIntegerv = Query<&platform_impl_t::glGetIntegerv>::call;
    table.gl.glGetInteger64v = Query<&platform_impl_t::glGetInteger64v>::call;
    table.gl.glGetString = Query<&platform_impl_t::glGetString>::call;
    table.gl.glGetStringi = Query<&platform_impl_t::glGetStringi>::call;
    table.gl.glShaderSource = shaderSource;
    return table;
}

} // namespace

} // namespace android::rig

constinit const android::gl_hooks_t orvelPublicGl = android::rig::publicGl();
