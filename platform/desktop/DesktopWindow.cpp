#include "DesktopWindow.h"

namespace android::desktop {

namespace {

DesktopWindow* desktopWindow(ANativeWindow* window) { return static_cast<DesktopWindow*>(window); }

int answer(const ANativeWindow* window, int what, int* value) {
    const WindowGeometry geometry = static_cast<const DesktopWindow*>(window)->geometry();
    if (what != kQueryBufferWidth && what != kQueryBufferHeight) {
        return -EINVAL;
    }
    const int answered = what == kQueryBufferWidth ? geometry.width : geometry.height;
    if (answered < 0) {
        return answered;
    }
    *value = answered;
    return 0;
}

} // namespace

DesktopWindow::DesktopWindow() : ANativeWindow{answer} {}

} // namespace android::desktop

using android::desktop::desktopWindow;
using android::desktop::WindowGeometry;

int32_t ANativeWindow_getWidth(ANativeWindow* window) {
    return window ? desktopWindow(window)->geometry().width : -EINVAL;
}

int32_t ANativeWindow_getHeight(ANativeWindow* window) {
    return window ? desktopWindow(window)->geometry().height : -EINVAL;
}

int32_t ANativeWindow_getFormat(ANativeWindow* window) {
    return window ? desktopWindow(window)->geometry().format : -EINVAL;
}

int32_t ANativeWindow_setBuffersGeometry(ANativeWindow* window, int32_t width, int32_t height, int32_t format) {
    const bool ownSize = width == 0 && height == 0;
    if (!window || format < 0 || (!ownSize && (width < 1 || height < 1))) {
        return -EINVAL;
    }
    return desktopWindow(window)->setBuffersGeometry({width, height, format});
}
