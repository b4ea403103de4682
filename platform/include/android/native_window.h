// What an application may do with its window.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct ANativeWindow;
typedef struct ANativeWindow ANativeWindow;

/** Formats of a window's buffers. */
enum ANativeWindow_LegacyFormat {
    WINDOW_FORMAT_RGBA_8888 = 1,
    WINDOW_FORMAT_RGBX_8888 = 2,
    WINDOW_FORMAT_RGB_565 = 4,
};

/** @return the width of the window in pixels, or a negative status */
int32_t ANativeWindow_getWidth(ANativeWindow* window);

/** @return the height of the window in pixels, or a negative status */
int32_t ANativeWindow_getHeight(ANativeWindow* window);

/** @return the format of the window's buffers, or a negative status */
int32_t ANativeWindow_getFormat(ANativeWindow* window);

/**
 * Asks for buffers of another size than the window has on the screen; the picture is scaled when it is shown.
 * @param width, height pixels; both 0 bring back the size of the window
 * @param format        of the list above; 0 brings back the window's own
 * @return 0, or a negative status with nothing changed
 */
int32_t ANativeWindow_setBuffersGeometry(ANativeWindow* window, int32_t width, int32_t height, int32_t format);

#ifdef __cplusplus
}
#endif
