// What a window is made of on a desktop: whoever makes one derives from this class.
#pragma once

#include <android/native_window.h>
#include <system/window.h>

#include <cerrno>
#include <cstdint>

namespace android::desktop {

/** Query codes of the platform for the size of a window's buffers. */
inline constexpr int kQueryBufferWidth = 22;
inline constexpr int kQueryBufferHeight = 23;

struct WindowGeometry {
    int32_t width = 0;
    int32_t height = 0;
    int32_t format = WINDOW_FORMAT_RGBA_8888; // a negative status in all three: not to be known

    bool operator==(const WindowGeometry&) const = default;
};

/** What a window answers whose buffers cannot be known: a negative status for each number. */
inline constexpr WindowGeometry kUnknownGeometry{-ENOSYS, -ENOSYS, -ENOSYS};

/** A window; a pointer to its ANativeWindow is what programs and the library hold. */
class DesktopWindow : public ANativeWindow {
public:
    DesktopWindow();
    virtual ~DesktopWindow() = default;
    DesktopWindow(const DesktopWindow&) = delete;
    DesktopWindow& operator=(const DesktopWindow&) = delete;

    /** The buffers that the window has now; any thread may ask. */
    virtual WindowGeometry geometry() const = 0;

    /**
     * Gives the window other buffers.
     * @param wanted width and height both at least 1 or both 0 (the window's own size); format 0 is the window's own
     * @return 0, or a negative status with nothing changed
     */
    virtual int32_t setBuffersGeometry(const WindowGeometry& wanted) = 0;
};

} // namespace android::desktop
