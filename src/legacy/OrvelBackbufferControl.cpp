#include "legacy/OrvelBackbufferControl.h"

#include "base/OrvelLog.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <android/native_window.h>
#include <system/window.h>

#include <cstring>
#include <sys/prctl.h>
#include <unistd.h>

namespace android::orvel {

namespace {

using com::velmor::ravelo::OrvelPrefs;

// Queries of the device's window beyond those of the public headers.
constexpr int kQueryBufferWidth = 22;
constexpr int kQueryBufferHeight = 23;

struct WindowSize {
    int32_t width;
    int32_t height;
    bool operator==(const WindowSize&) const = default;
    WindowSize transposed() const { return {height, width}; }
};

enum SizeKind { NATIVE, TOLERATED, SR_OFF, SR_ON };
constexpr SizeKind kServed[] = {NATIVE, SR_OFF, SR_ON};

WindowSize configured(const OrvelPrefs& prefs, SizeKind kind) {
    const auto first = static_cast<size_t>(kind) * 2;
    return {prefs.mBackbufferSizes[first], prefs.mBackbufferSizes[first + 1]};
}

bool isEitherWay(WindowSize size, WindowSize known) { return size == known || size == known.transposed(); }

} // namespace

OrvelBackbufferControl& OrvelBackbufferControl::getInstance() {
    static OrvelBackbufferControl instance;
    return instance;
}

void OrvelBackbufferControl::updateANativeWindow(ANativeWindow* window) {
    char thread[32] = {};
    prctl(PR_GET_NAME, thread);
    const int id = gettid();
    ORVEL_LOGI("updateANativeWindow: %s-%d, %p", thread, id, static_cast<void*>(window));
    if (std::strcmp(thread, "UnityMain") == 0) {
        ORVEL_LOGI("updateANativeWindow-success: %s-%d, %p", thread, id, static_cast<void*>(window));
        mWindow = window;
    }
}

bool OrvelBackbufferControl::setANWBuffersGeometry(int width, int height) {
    constexpr int kLargest = 9999;
    const bool inRange = width >= 1 && width <= kLargest && height >= 1 && height <= kLargest;
    ANativeWindow* const window = mWindow;
    if (!inRange || !window) {
        ORVEL_LOGE("setANWBuffersGeometry, scale backbuffer error!");
        return false;
    }
    const int format = ANativeWindow_getFormat(window);
    WindowSize current{0, 0}; // stays an unknown size when a query fails
    window->query(window, kQueryBufferWidth, &current.width);
    window->query(window, kQueryBufferHeight, &current.height);
    ORVEL_LOGI("setANWBuffersGeometry: %p, %dx%d-%d", static_cast<void*>(window), width, height, format);
    mWidth = width;
    mHeight = height;
    OrvelPrefs* prefs = OrvelSettings::getInstance().mPrefs;
    if (!prefs) {
        return false;
    }
    for (const SizeKind kind : kServed) {
        if (isEitherWay(current, configured(*prefs, kind))) {
            const int status = ANativeWindow_setBuffersGeometry(window, width, height, format);
            ORVEL_LOGI("setANWBuffersGeometry, scale backbuffer, %dx%d-%d --> %dx%d-%d, %d", current.width,
                       current.height, format, width, height, format, status);
            return true;
        }
    }
    if (!isEitherWay(current, configured(*prefs, TOLERATED))) {
        ORVEL_LOGI("setANWBuffersGeometry, disableBackbufferScale");
        prefs->mBackbufferSizeValid = false;
    }
    return false;
}

bool OrvelBackbufferControl::isEnableBackbufferScale() const {
    const OrvelPrefs* prefs = OrvelSettings::getInstance().mPrefs;
    return prefs && prefs->mBackbufferSizeValid;
}

void OrvelBackbufferControl::checkModifyUserDimensions(unsigned& width, unsigned& height) {
    if (!isEnableBackbufferScale() || mWidth < 1 || mHeight < 1) {
        return;
    }
    OrvelPrefs& prefs = *OrvelSettings::getInstance().mPrefs;
    const WindowSize size{static_cast<int32_t>(width), static_cast<int32_t>(height)};
    for (const SizeKind kind : kServed) {
        if (size == configured(prefs, kind)) {
            ORVEL_LOGI("checkModifyUserDimensions, %dx%d -> %dx%d", size.width, size.height, mWidth, mHeight);
            width = static_cast<unsigned>(mWidth);
            height = static_cast<unsigned>(mHeight);
            return;
        }
    }
    if (size != WindowSize{0, 0} && size != configured(prefs, TOLERATED)) {
        ORVEL_LOGI("checkModifyUserDimensions, disableBackbufferScale");
        prefs.mBackbufferSizeValid = false;
    }
}

} // namespace android::orvel
