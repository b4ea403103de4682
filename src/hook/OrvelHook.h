// Connects the framework to the EGL loader: the application's contexts, its extension queries, and the functions it
// asks for.
#pragma once

#include <EGL/egldefs.h>

namespace android::orvel::hook {

/**
 * Chooses between installation at early initialisation (false) and as a late debug layer (true). Always false: the
 * late path is kept for those who debug the loader, and switched off.
 */
constexpr bool EnableDebugOrvelLayer() { return false; }

/**
 * Installs the framework when the process's configuration holds a module, else changes nothing. Call it once the
 * driver's tables are saved, on the thread that initialises EGL. Nothing uninstalls it.
 */
void RegisterHookedFunctions(egl_connection_t* cnx);

// Writers for single tables. They save nothing, so the hooks must have been installed once; the installer does without
// them.

void RegisterHookedEGLFunctions(egl_t& egl);
/** The three queries through which an application learns of extensions. */
void InstallHookedPlatformDebugLabelFunctions(platform_impl_t& platform);
/** Creation, destruction and make-current of contexts. */
void InstallHookedPlatformContextFunctions(platform_impl_t& platform);
/** Both of the above. */
void RegisterHookedPlatformFunctions(platform_impl_t& platform);

/** @return the driver's own entry; the modules that need that function are given up, the application has it now */
__eglMustCastToProperFunctionPointerType EGLAPIENTRY EglGetProcAddressHooked(const char* procname);

namespace platformhook {

// The driver's answers with "GL_EXT_debug_label" added where the driver lacks it: the modules recognise a game's passes
// by its labels. Whether it does is asked once and never again.
const GLubyte* GL_APIENTRY PlatGetStringHooked(GLenum name);
const GLubyte* GL_APIENTRY PlatGetStringiHooked(GLenum name, GLuint index);
void GL_APIENTRY PlatGetIntegervHooked(GLenum pname, GLint* data);

EGLContext EGLAPIENTRY PlatCreateContextHooked(EGLDisplay dpy, EGLConfig config, EGLContext share,
                                               const EGLint* attribs);
EGLBoolean EGLAPIENTRY PlatDestroyContextHooked(EGLDisplay dpy, EGLContext ctx);
EGLBoolean EGLAPIENTRY PlatMakeCurrentHooked(EGLDisplay dpy, EGLSurface draw, EGLSurface read, EGLContext ctx);

} // namespace platformhook

} // namespace android::orvel::hook
