// Repeats frames at an interval, and serves the game's screenshots at the size it asked for.
#pragma once

#include <EGL/egldefs.h>

#include <cstdint>

namespace android {

// One of each for the process, in spite of the m: they are known by these names.
extern int64_t mDFITimestamp;        // of the frame that was kept last, nanoseconds of the monotonic clock
extern uint32_t mDFITempTexture;     // what a frame is kept in, 0 none yet; remade when the surface's size changes
extern uint32_t mDFITempFramebuffer; // that texture, to be drawn into and read from
extern int32_t mSurfaceWidth;        // size of the texture
extern int32_t mSurfaceHeight;
extern bool mDFICopySuccess; // a frame was kept for the swap that is under way

/**
 * Before the real swap: keeps a copy of the frame when the interval has passed. The framebuffer bindings are then
 * ours, deliberately: the swap follows at once.
 */
void saveFrame(EGLDisplay display, EGLSurface surface);

/** After the real swap: presents a kept frame a second time. @return what the game is told of its swap */
EGLBoolean swapFrame(EGLDisplay display, EGLSurface surface, EGLBoolean result);

/** @return 1 when the read was served from a scaled copy, 0 when the caller must read from the driver */
int processGameCapture(int x, int y, int width, int height, unsigned format, unsigned type, void* pixels);

} // namespace android
