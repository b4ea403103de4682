// libEGL.so.1: the EGL entries that a program calls. All go to the platform table; a few have to tell the library or
// the thread's table what happened.
#include "Driver.h"
#include "Library.h"
#include "Loader.h"
#include "LogFile.h"
#include "Observers.h"
#include "PublicGl.h"
#include "RenderTargets.h"
#include "Report.h"
#include "ThreadTable.h"
#include "Windows.h"

#include <cstring>
#include <exception>

namespace android::rig {

namespace {

namespace forward {
#define EGL_ENTRY(Result, name, params, args, providers)                                                               \
    Result EGLAPIENTRY name params { return orNothing(connection().platform.name) args; }
#include <entries/egl_entries.in>
#undef EGL_ENTRY
} // namespace forward

EGLBoolean EGLAPIENTRY bindApi(EGLenum api) {
    if (api != EGL_OPENGL_ES_API) {
        allowUnknownEntries();
    }
    return forward::eglBindAPI(api);
}

/** @return the major version that the attributes ask for */
EGLint versionAskedFor(const EGLint* attribs) {
    EGLint version = 1;
    for (; attribs && attribs[0] != EGL_NONE; attribs += 2) {
        if (attribs[0] == EGL_CONTEXT_MAJOR_VERSION) {
            version = attribs[1];
        }
    }
    return version;
}

EGLContext EGLAPIENTRY createContext(EGLDisplay dpy, EGLConfig config, EGLContext share, const EGLint* attribs) {
    const EGLint version = versionAskedFor(attribs);
    if (version < 2) {
        allowUnknownEntries();
    }
    EGLContext context = forward::eglCreateContext(dpy, config, share, attribs);
    if (context != EGL_NO_CONTEXT) {
        count(CONTEXTS);
        if (gLibrary.stub) {
            gLibrary.stub->eglCreateContext(version);
        }
    }
    return context;
}

EGLBoolean EGLAPIENTRY destroyContext(EGLDisplay dpy, EGLContext context) {
    const EGLBoolean destroyed = forward::eglDestroyContext(dpy, context);
    if (destroyed && gLibrary.stub) {
        gLibrary.stub->eglDestroyContext();
    }
    return destroyed;
}

EGLBoolean EGLAPIENTRY makeCurrent(EGLDisplay dpy, EGLSurface draw, EGLSurface read, EGLContext context) {
    const EGLBoolean made = forward::eglMakeCurrent(dpy, draw, read, context);
    if (made && context != EGL_NO_CONTEXT) {
        enterContext();
        reportRenderer(gDriverHooks.gl);
    } else if (made) {
        leaveContext();
    }
    return made;
}

EGLBoolean EGLAPIENTRY releaseThread() {
    const EGLBoolean released = forward::eglReleaseThread();
    if (released) {
        leaveContext();
    }
    return released;
}

EGLSurface EGLAPIENTRY createWindowSurface(EGLDisplay dpy, EGLConfig config, EGLNativeWindowType window,
                                           const EGLint* attribs) {
    const platform_impl_t& platform = connection().platform;
    try {
        // Only for a library that takes part: other programs draw to their windows as without the rig.
        if (gLibrary.stub && gLibrary.stub->isEnabled()) {
            window = windowForLibrary(dpy, window);
        }
        return orNothing(platform.eglCreateWindowSurface)(dpy, config, window, attribs);
    } catch (const std::exception& error) {
        RIG_LOGE("no window surface: %s", error.what());
        return EGL_NO_SURFACE;
    }
}

EGLBoolean afterSwap(EGLBoolean swapped) {
    if (swapped) {
        count(PROGRAM_SWAPS);
    }
    if (gLibrary.stub) {
        gLibrary.stub->eglSwapBuffersEnd();
    }
    return swapped;
}

template <auto Slot>
struct Swap;
template <typename... More, EGLBoolean (*platform_impl_t::*Slot)(EGLDisplay, EGLSurface, More...)>
struct Swap<Slot> {
    static EGLBoolean EGLAPIENTRY call(EGLDisplay dpy, EGLSurface surface, More... more) {
        const platform_impl_t& platform = connection().platform;
        const SwapScope swap;
        expectSwap();
        return afterSwap(orNothing(platform.*Slot)(dpy, surface, more...));
    }
};

AnyFunction EGLAPIENTRY getProcAddress(const char* name);

constexpr egl_t publicEgl() {
    egl_t table{};
#define EGL_ENTRY(Result, name, params, args, providers) table.name = forward::name;
#include <entries/egl_entries.in>
#undef EGL_ENTRY
    table.eglBindAPI = bindApi;
    table.eglCreateContext = createContext;
    table.eglCreateWindowSurface = createWindowSurface;
    table.eglDestroyContext = destroyContext;
    table.eglMakeCurrent = makeCurrent;
    table.eglReleaseThread = releaseThread;
    table.eglSwapBuffers = Swap<&platform_impl_t::eglSwapBuffers>::call;
    table.eglSwapBuffersWithDamageEXT = Swap<&platform_impl_t::eglSwapBuffersWithDamageEXT>::call;
    table.eglSwapBuffersWithDamageKHR = Swap<&platform_impl_t::eglSwapBuffersWithDamageKHR>::call;
    table.eglGetProcAddress = getProcAddress;
    return table;
}

constexpr egl_t kPublicEgl = publicEgl();

// A known name gives the public entry, so that the program's calls pass the library; which names the program asks for
// beyond the core is for the platform, and whoever hooks it, to know.
AnyFunction EGLAPIENTRY getProcAddress(const char* name) {
    const egl_connection_t& cnx = connection();
    if (name && std::strcmp(name, "orvelCreateWindow") == 0) {
        return reinterpret_cast<AnyFunction>(createWindow);
    }
    const Entry* entry = name ? findEntry(name) : nullptr;
    AnyFunction answer = nullptr;
    if (!entry || !entry->isCore()) {
        answer = forward::eglGetProcAddress(name);
    }
    if (entry && entry->isGl && entry->in(gHooks.gl)) {
        return entry->in(orvelPublicGl.gl);
    }
    if (entry && !entry->isGl && entry->in(cnx.platform)) {
        return entry->in(kPublicEgl);
    }
    return answer;
}

} // namespace

} // namespace android::rig

#define EGL_ENTRY(Result, name, params, args, providers)                                                               \
    extern "C" [[gnu::visibility("default")]] Result EGLAPIENTRY name params {                                         \
        return android::rig::kPublicEgl.name args;                                                                     \
    }
#include <entries/egl_entries.in>
#undef EGL_ENTRY
