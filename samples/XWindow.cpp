#include "XWindow.h"

#include "Gl.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace sample {

EGLNativeDisplayType xDisplay() {
    static Display* const display = XOpenDisplay(nullptr);
    if (!display) {
        fail("cannot open the display that DISPLAY names");
    }
    return reinterpret_cast<EGLNativeDisplayType>(display);
}

EGLNativeWindowType openXWindow(Size size, EGLint visual) {
    auto* display = reinterpret_cast<Display*>(xDisplay());
    const ::Window root = DefaultRootWindow(display);
    XVisualInfo wanted{};
    wanted.visualid = static_cast<VisualID>(visual);
    int count = 0;
    XVisualInfo* found = XGetVisualInfo(display, VisualIDMask, &wanted, &count);
    if (!found) {
        fail("the X server has no visual 0x%x", visual);
    }
    XSetWindowAttributes attributes{};
    attributes.colormap = XCreateColormap(display, root, found->visual, AllocNone);
    const ::Window window =
        XCreateWindow(display, root, 0, 0, static_cast<unsigned>(size.width), static_cast<unsigned>(size.height), 0,
                      found->depth, InputOutput, found->visual, CWColormap | CWBorderPixel, &attributes);
    XFree(found);
    XStoreName(display, window, "orvel-sample");
    XSelectInput(display, window, ExposureMask);
    return static_cast<EGLNativeWindowType>(window);
}

void showXWindow(EGLNativeWindowType window) {
    auto* display = reinterpret_cast<Display*>(xDisplay());
    XMapWindow(display, static_cast<::Window>(window));
    XEvent exposed;
    XWindowEvent(display, static_cast<::Window>(window), ExposureMask, &exposed);
}

} // namespace sample
