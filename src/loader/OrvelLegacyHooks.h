// The legacy layer: our functions in the loader's tables, each calling the features in a fixed order and then the
// driver. Installed once, at EGL initialisation, and never taken out again.
#pragma once

#include <EGL/egldefs.h>

namespace android {

/** Private copy of a thread's table with the legacy GL hooks in it; shared by all threads, see getOrvelHooks. */
extern gl_hooks_t gOrvelHooks;

/** The connection's eglSwapBuffers before the SGame swap hook replaced it; may be a hook of the framework. */
extern decltype(platform_impl_t::eglSwapBuffers) gSwapbuffers;

/** Writes the 22 GL hooks into table. */
void installOrvelHooks(gl_hooks_t* table);

/** Writes the 22 GL hooks into the connection's GLES 2 table, then the swap and the window surface hook. */
void installVoHooks(egl_connection_t* cnx);

/** Writes the glTexParameteri hook alone. */
void installOrvelPUBGHooks(gl_hooks_t* table);

/** Saves the connection's eglSwapBuffers in gSwapbuffers and writes the SGame swap hook. */
void installOrvelSGAMEHooks(egl_connection_t* cnx);

/**
 * Copies the table that the calling thread holds under the thread-specific key (it must hold one) into gOrvelHooks
 * and writes the GL hooks there. Calls from several threads overwrite one another.
 */
gl_hooks_t* getOrvelHooks();

/** For the loader's end-of-swap callback: the swap-end work of dynamic resolution and of scene recognition. */
void onEglSwapBuffersEnd();

} // namespace android
