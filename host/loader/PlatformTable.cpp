#include "PlatformTable.h"

#include "Loader.h"

namespace android::rig {

namespace {

namespace implementation {

// The handles of a desktop's driver are the program's own: nothing to unwrap. The driver's entry is read at each
// call, so that one which is replaced there later is seen.
#define EGL_ENTRY(Result, name, params, args, providers)                                                               \
    Result EGLAPIENTRY name params { return orNothing(gConnection.egl.name) args; }
#include <entries/egl_entries.in>
#undef EGL_ENTRY

} // namespace implementation

} // namespace

void fillPlatform(egl_connection_t* cnx) {
#define EGL_ENTRY(Result, name, params, args, providers)                                                               \
    cnx->platform.name = cnx->egl.name ? implementation::name : nullptr;
#include <entries/egl_entries.in>
#undef EGL_ENTRY
}

void fillPlatformQueries(egl_connection_t* cnx, const GlTable& gl) {
    cnx->platform.glGetBooleanv = gl.glGetBooleanv;
    cnx->platform.glGetFloatv = gl.glGetFloatv;
    cnx->platform.glGetIntegerv = gl.glGetIntegerv;
    cnx->platform.glGetInteger64v = gl.glGetInteger64v;
    cnx->platform.glGetString = gl.glGetString;
    cnx->platform.glGetStringi = gl.glGetStringi;
}

} // namespace android::rig
