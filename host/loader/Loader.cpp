#include "Loader.h"

#include "Driver.h"
#include "Library.h"
#include "LogFile.h"
#include "Observers.h"
#include "PlatformTable.h"
#include "Report.h"

#include <atomic>
#include <exception>
#include <mutex>

namespace android::rig {

constinit egl_connection_t gConnection{};
constinit gl_hooks_t gDriverHooks{};
constinit gl_hooks_t gHooks{};

namespace {

std::recursive_mutex sStartMutex;
bool sStarting = false; // under sStartMutex
std::atomic<bool> sStarted{false};

void startAll() {
    openLog();
    openReport();
    if (openEgl(&gConnection)) {
        fillPlatform(&gConnection); // before anything that may call back
        if (openGles(&gConnection, &gDriverHooks.gl)) {
            gConnection.hooks[egl_connection_t::GLESv2_INDEX] = &gHooks;
        }
    }
    observe(&gDriverHooks.gl, &gConnection.egl);
    gHooks = gDriverHooks;
    fillPlatformQueries(&gConnection, gDriverHooks.gl);
    startLibrary(&gConnection);
}

void start() {
    const std::lock_guard lock(sStartMutex);
    if (sStarting || sStarted.load(std::memory_order_relaxed)) {
        return;
    }
    sStarting = true;
    try {
        startAll();
    } catch (const std::exception& error) {
        RIG_LOGE("start: %s", error.what()); // the program goes on with what there is
    }
    sStarting = false;
    sStarted.store(true, std::memory_order_release);
}

} // namespace

egl_connection_t& connection() {
    if (!sStarted.load(std::memory_order_acquire)) {
        start();
    }
    return gConnection;
}

} // namespace android::rig
