// The window that a program hands to eglCreateWindowSurface: what of the platform's own structure the library reads.
// The operations that applications know are in <android/native_window.h>.
#pragma once

struct ANativeWindow {
    /**
     * @param what one of the platform's query codes
     * @return 0 with the answer in *value, or an error's status with *value left as it was
     */
    int (*query)(const struct ANativeWindow* window, int what, int* value);
};
