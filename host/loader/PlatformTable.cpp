#include "PlatformTable.h"

#include "Loader.h"
#include "WindowEntries.h"
#include "Windows.h"

#include <type_traits>

namespace android::rig {

namespace {

// EGL's handles are all of one type. Here the same lists are read with a type of its own for surfaces, so that each
// entry's type tells which of its arguments are surfaces.
namespace marked {
using EGLSurface = struct SurfaceMark*;
#define EGL_ENTRY(Result, name, params, args, providers) using name = Result params;
#include <entries/egl_entries.in>
#undef EGL_ENTRY
} // namespace marked

/** The program's surfaces may be known to the driver by other handles; every other argument goes on as it is. */
template <typename Mark, typename T>
T forDriver(T argument) {
    if constexpr (std::is_same_v<Mark, marked::EGLSurface>) {
        return driverSurface(argument);
    } else {
        return argument;
    }
}

/** Calls the driver's entry, which is read at each call, so that one which is replaced there later is seen. */
template <auto Slot, typename Marked>
struct Implementation;
template <typename R, typename... Params, R (*egl_t::*Slot)(Params...), typename MarkedR, typename... Marks>
struct Implementation<Slot, MarkedR(Marks...)> {
    static R EGLAPIENTRY call(Params... params) {
        return orNothing(gConnection.egl.*Slot)(forDriver<Marks>(params)...);
    }
};

} // namespace

void fillPlatform(egl_connection_t* cnx) {
#define EGL_ENTRY(Result, name, params, args, providers)                                                               \
    cnx->platform.name = cnx->egl.name ? Implementation<&egl_t::name, marked::name>::call : nullptr;
#include <entries/egl_entries.in>
#undef EGL_ENTRY
    fillWindowEntries(&cnx->platform);
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
