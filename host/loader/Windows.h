// The windows and window surfaces that the rig made, by the values that a program holds.
#pragma once

#include "RigWindow.h"

namespace android::rig {

/** Remembers on what a display was opened. @param platform 0 when the program left it to the driver to find out */
void noteDisplay(EGLDisplay display, EGLenum platform, void* native);

/**
 * What a program gets as orvelCreateWindow: a window that needs no display.
 * @return 0 for a size below 1 or beyond kLargestWindow
 */
EGLNativeWindowType EGLAPIENTRY createWindow(EGLint width, EGLint height);

/**
 * The library takes every window for an ANativeWindow, as it may on a device.
 * @param native what the program gave to eglCreateWindowSurface
 * @return the ANativeWindow that stands for it from now on; null stays null
 */
EGLNativeWindowType windowForLibrary(EGLDisplay display, EGLNativeWindowType native);

/** @return the rig's window behind an ANativeWindow, or null for anything else, also for numbers */
RigWindow* findWindow(EGLNativeWindowType native);

/** The program holds a surface of that window now. */
void addSurface(EGLDisplay display, EGLSurface handle, RigWindow* window);

/** The program's surface is destroyed. */
void removeSurface(EGLSurface handle);

/** The display is terminated, all its surfaces with it. */
void removeSurfaces(EGLDisplay display);

/** @return the window of a surface, or null for one that the rig has no part in */
RigWindow* windowOf(EGLSurface handle);

/** @return what the driver knows the program's surface by */
EGLSurface driverSurface(EGLSurface handle);

/** @return what the program knows the driver's surface by */
EGLSurface programSurface(EGLSurface driver);

} // namespace android::rig
