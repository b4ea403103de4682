#include "RigWindow.h"

#include "Loader.h"
#include "Report.h"

namespace android::rig {

int32_t formatOf(EGLDisplay display, EGLConfig config) {
    EGLint red = 8;
    EGLint alpha = 8;
    const auto ask = orNothing(gConnection.egl.eglGetConfigAttrib);
    ask(display, config, EGL_RED_SIZE, &red);
    ask(display, config, EGL_ALPHA_SIZE, &alpha);
    return red < 8 ? WINDOW_FORMAT_RGB_565 : alpha > 0 ? WINDOW_FORMAT_RGBA_8888 : WINDOW_FORMAT_RGBX_8888;
}

EGLSurface refuseSurface(EGLDisplay display, EGLConfig config) {
    return orNothing(gConnection.egl.eglCreateWindowSurface)(display, config, EGLNativeWindowType(), nullptr);
}

void reportWindowChange(const desktop::WindowGeometry& geometry) {
    count(WINDOW_CHANGES);
    reportValue(&ReportLayout::windowWidth, static_cast<uint32_t>(geometry.width));
    reportValue(&ReportLayout::windowHeight, static_cast<uint32_t>(geometry.height));
}

} // namespace android::rig
