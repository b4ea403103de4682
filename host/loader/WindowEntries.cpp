#include "WindowEntries.h"

#include "Loader.h"
#include "Windows.h"

#include <new>
#include <vector>

namespace android::rig {

namespace {

// ---- displays -----------------------------------------------------------------------------------------

EGLDisplay note(EGLDisplay display, EGLenum platform, void* native) {
    if (display != EGL_NO_DISPLAY) {
        noteDisplay(display, platform, native);
    }
    return display;
}

EGLDisplay EGLAPIENTRY getDisplay(EGLNativeDisplayType native) {
    return note(orNothing(gConnection.egl.eglGetDisplay)(native), 0, native);
}

EGLDisplay EGLAPIENTRY getPlatformDisplay(EGLenum platform, void* native, const EGLAttrib* attribs) {
    return note(orNothing(gConnection.egl.eglGetPlatformDisplay)(platform, native, attribs), platform, native);
}

EGLDisplay EGLAPIENTRY getPlatformDisplayEXT(EGLenum platform, void* native, const EGLint* attribs) {
    return note(orNothing(gConnection.egl.eglGetPlatformDisplayEXT)(platform, native, attribs), platform, native);
}

EGLBoolean EGLAPIENTRY terminate(EGLDisplay display) {
    const EGLBoolean terminated = orNothing(gConnection.egl.eglTerminate)(display);
    if (terminated) {
        removeSurfaces(display);
    }
    return terminated;
}

// ---- configurations -----------------------------------------------------------------------------------

bool hasWindows(EGLDisplay display) {
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_WINDOW_BIT, EGL_RENDERABLE_TYPE, 0, EGL_NONE};
    EGLint count = 0;
    orNothing(gConnection.egl.eglChooseConfig)(display, wanted, nullptr, 0, &count);
    return count > 0;
}

/** The same wishes with a pbuffer for a window; a window is also what is meant when nothing is said. */
std::vector<EGLint> withoutWindow(const EGLint* attribs) {
    std::vector<EGLint> wanted = {EGL_SURFACE_TYPE, EGL_WINDOW_BIT};
    for (; attribs && attribs[0] != EGL_NONE; attribs += 2) {
        if (attribs[0] == EGL_SURFACE_TYPE) {
            wanted[1] = attribs[1];
        } else {
            wanted.insert(wanted.end(), attribs, attribs + 2);
        }
    }
    if (wanted[1] != EGL_DONT_CARE && wanted[1] & EGL_WINDOW_BIT) {
        wanted[1] = (wanted[1] & ~EGL_WINDOW_BIT) | EGL_PBUFFER_BIT;
    }
    wanted.push_back(EGL_NONE);
    return wanted;
}

EGLBoolean EGLAPIENTRY chooseConfig(EGLDisplay display, const EGLint* attribs, EGLConfig* configs, EGLint size,
                                    EGLint* count) {
    const auto choose = orNothing(gConnection.egl.eglChooseConfig);
    const EGLBoolean chosen = choose(display, attribs, configs, size, count);
    if (!chosen || !count || *count > 0 || hasWindows(display)) {
        return chosen;
    }
    try {
        return choose(display, withoutWindow(attribs).data(), configs, size, count);
    } catch (const std::bad_alloc&) {
        return chosen;
    }
}

// ---- surfaces -----------------------------------------------------------------------------------------

EGLSurface EGLAPIENTRY createWindowSurface(EGLDisplay display, EGLConfig config, EGLNativeWindowType native,
                                           const EGLint* attribs) {
    RigWindow* window = findWindow(native);
    if (!window) {
        return orNothing(gConnection.egl.eglCreateWindowSurface)(display, config, native, attribs);
    }
    EGLSurface handle = window->createSurface(display, config, attribs);
    if (handle != EGL_NO_SURFACE) {
        addSurface(display, handle, window);
    }
    return handle;
}

EGLBoolean EGLAPIENTRY destroySurface(EGLDisplay display, EGLSurface surface) {
    const EGLBoolean destroyed = orNothing(gConnection.egl.eglDestroySurface)(display, driverSurface(surface));
    if (destroyed) {
        removeSurface(surface);
    }
    return destroyed;
}

EGLSurface EGLAPIENTRY getCurrentSurface(EGLint which) {
    return programSurface(orNothing(gConnection.egl.eglGetCurrentSurface)(which));
}

void settle(EGLSurface surface) {
    if (RigWindow* window = windowOf(surface)) {
        window->settle();
    }
}

EGLBoolean EGLAPIENTRY makeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context) {
    settle(draw);
    settle(read);
    return orNothing(gConnection.egl.eglMakeCurrent)(display, driverSurface(draw), driverSurface(read), context);
}

template <auto Slot>
struct Swap;
template <typename... More, EGLBoolean (*egl_t::*Slot)(EGLDisplay, EGLSurface, More...)>
struct Swap<Slot> {
    static EGLBoolean EGLAPIENTRY call(EGLDisplay display, EGLSurface surface, More... more) {
        if (RigWindow* window = windowOf(surface)) {
            window->show();
        }
        const EGLBoolean swapped = orNothing(gConnection.egl.*Slot)(display, driverSurface(surface), more...);
        if (swapped) {
            settle(surface);
        }
        return swapped;
    }
};

} // namespace

void fillWindowEntries(platform_impl_t* platform) {
#define ORVEL_REPLACE(name, function)                                                                                  \
    if (platform->name) {                                                                                              \
        platform->name = function;                                                                                     \
    }
    ORVEL_REPLACE(eglGetDisplay, getDisplay)
    ORVEL_REPLACE(eglGetPlatformDisplay, getPlatformDisplay)
    ORVEL_REPLACE(eglGetPlatformDisplayEXT, getPlatformDisplayEXT)
    ORVEL_REPLACE(eglTerminate, terminate)
    ORVEL_REPLACE(eglChooseConfig, chooseConfig)
    ORVEL_REPLACE(eglCreateWindowSurface, createWindowSurface)
    ORVEL_REPLACE(eglDestroySurface, destroySurface)
    ORVEL_REPLACE(eglGetCurrentSurface, getCurrentSurface)
    ORVEL_REPLACE(eglMakeCurrent, makeCurrent)
    ORVEL_REPLACE(eglSwapBuffers, Swap<&egl_t::eglSwapBuffers>::call)
    ORVEL_REPLACE(eglSwapBuffersWithDamageEXT, Swap<&egl_t::eglSwapBuffersWithDamageEXT>::call)
    ORVEL_REPLACE(eglSwapBuffersWithDamageKHR, Swap<&egl_t::eglSwapBuffersWithDamageKHR>::call)
#undef ORVEL_REPLACE
}

} // namespace android::rig
