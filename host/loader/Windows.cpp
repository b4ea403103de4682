#include "Windows.h"

#include "Loader.h"
#include "PbufferWindow.h"
#include "X11Window.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace android::rig {

namespace {

/** A window of a kind that the rig cannot resize: it says so, and the library leaves it alone. */
class ForeignWindow : public RigWindow {
public:
    explicit ForeignWindow(EGLNativeWindowType native) : mNative(native) {}

    desktop::WindowGeometry geometry() const override { return desktop::kUnknownGeometry; }
    int32_t setBuffersGeometry(const desktop::WindowGeometry&) override { return desktop::kUnknownGeometry.width; }
    EGLSurface createSurface(EGLDisplay display, EGLConfig config, const EGLint* attribs) override {
        return mSurface = orNothing(gConnection.egl.eglCreateWindowSurface)(display, config, mNative, attribs);
    }
    EGLSurface driverSurface() const override { return mSurface; }

private:
    const EGLNativeWindowType mNative;
    std::atomic<EGLSurface> mSurface{EGL_NO_SURFACE};
};

struct OpenedOn {
    EGLenum platform;
    void* native;
};

struct Surface {
    EGLDisplay display;
    RigWindow* window;
};

// Never freed: threads may draw while the process ends.
struct Known {
    std::mutex mutex;
    std::map<EGLDisplay, OpenedOn> displays;
    std::map<EGLNativeWindowType, std::unique_ptr<RigWindow>> windows; // by their ANativeWindow
    std::map<std::pair<EGLDisplay, EGLNativeWindowType>, RigWindow*> standIns;
    std::map<EGLSurface, Surface> surfaces;
};

Known& known() {
    static auto* all = new Known;
    return *all;
}

/** A program that opens X11 without saying so gives its window as a number that the server has allotted. */
bool isX11(const OpenedOn& display, EGLNativeWindowType window) {
    constexpr uintptr_t kMostIds = uintptr_t(1) << 29;
    if (display.platform == EGL_PLATFORM_X11_KHR) {
        return true;
    }
    const char* platform = std::getenv("EGL_PLATFORM");
    const bool named = platform && *platform;
    return display.platform == 0 && uintptr_t(window) < kMostIds &&
           (named ? std::strcmp(platform, "x11") == 0 : display.native || std::getenv("DISPLAY"));
}

RigWindow* keep(std::unique_ptr<RigWindow> window) {
    RigWindow* kept = window.get();
    known().windows[kept->native()] = std::move(window);
    return kept;
}

std::unique_ptr<RigWindow> standIn(EGLDisplay display, EGLNativeWindowType native) {
    const auto opened = known().displays.find(display);
    if (opened != known().displays.end() && isX11(opened->second, native)) {
        return std::make_unique<X11Window>(serverOf(opened->second.native), static_cast<uint32_t>(native));
    }
    return std::make_unique<ForeignWindow>(native);
}

} // namespace

void noteDisplay(EGLDisplay display, EGLenum platform, void* native) {
    try {
        const std::lock_guard lock(known().mutex);
        known().displays[display] = {platform, native};
    } catch (const std::bad_alloc&) {
        // its windows cannot be resized, then
    }
}

EGLNativeWindowType EGLAPIENTRY createWindow(EGLint width, EGLint height) {
    if (width < 1 || height < 1 || width > kLargestWindow || height > kLargestWindow) {
        return {};
    }
    try {
        const std::lock_guard lock(known().mutex);
        return keep(std::make_unique<PbufferWindow>(width, height))->native();
    } catch (const std::bad_alloc&) {
        return {};
    }
}

EGLNativeWindowType windowForLibrary(EGLDisplay display, EGLNativeWindowType native) {
    const std::lock_guard lock(known().mutex);
    if (!native || known().windows.count(native)) {
        return native;
    }
    RigWindow*& window = known().standIns[{display, native}];
    if (!window) {
        window = keep(standIn(display, native));
    }
    return window->native();
}

RigWindow* findWindow(EGLNativeWindowType native) {
    const std::lock_guard lock(known().mutex);
    const auto window = known().windows.find(native);
    return window != known().windows.end() ? window->second.get() : nullptr;
}

void addSurface(EGLDisplay display, EGLSurface handle, RigWindow* window) {
    const std::lock_guard lock(known().mutex);
    known().surfaces[handle] = {display, window};
}

void removeSurface(EGLSurface handle) {
    const std::lock_guard lock(known().mutex);
    if (const auto surface = known().surfaces.find(handle); surface != known().surfaces.end()) {
        surface->second.window->surfaceDestroyed();
        known().surfaces.erase(surface);
    }
}

void removeSurfaces(EGLDisplay display) {
    const std::lock_guard lock(known().mutex);
    std::erase_if(known().surfaces, [display](const auto& row) {
        const Surface& surface = row.second;
        if (surface.display == display) {
            surface.window->surfaceDestroyed();
        }
        return surface.display == display;
    });
}

RigWindow* windowOf(EGLSurface handle) {
    const std::lock_guard lock(known().mutex);
    const auto surface = known().surfaces.find(handle);
    return surface != known().surfaces.end() ? surface->second.window : nullptr;
}

EGLSurface driverSurface(EGLSurface handle) {
    const RigWindow* window = windowOf(handle);
    return window ? window->driverSurface() : handle;
}

EGLSurface programSurface(EGLSurface driver) {
    const std::lock_guard lock(known().mutex);
    const auto& all = known().surfaces;
    const auto surface = std::find_if(
        all.begin(), all.end(), [driver](const auto& row) { return row.second.window->driverSurface() == driver; });
    return driver != EGL_NO_SURFACE && surface != all.end() ? surface->first : driver;
}

} // namespace android::rig
