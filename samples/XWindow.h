// A window on an X server. Apart from Window.h, since Xlib defines macros with everyday names.
#pragma once

#include "Options.h"

#include <EGL/egl.h>

namespace sample {

/** @return the server's connection, opened at the first call; the program ends when there is none */
EGLNativeDisplayType xDisplay();

/** Makes a window that does not show yet. @param visual number of the X visual that EGL draws with */
EGLNativeWindowType openXWindow(Size size, EGLint visual);

/** Returns when the server says that the window can be seen. */
void showXWindow(EGLNativeWindowType window);

} // namespace sample
