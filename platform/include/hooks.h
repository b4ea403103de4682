// The EGL loader's dispatch tables, as the loader that loads us declares them: one function
// pointer per entry, filled with the driver's functions. Expanded from the generated lists.
#pragma once

#ifndef EGL_NO_X11
#define EGL_NO_X11 1
#endif
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl32.h>

#include <GLES2/gl2ext.h> // after gl32.h: it uses the core types

namespace android {

/** GLES 1 or GLES 2/3 entries of one driver; the thread's current one is what public entries jump through. */
struct gl_hooks_t {
    struct gl_t {
#define GL_ENTRY(Result, name, params, args, providers) Result(GL_APIENTRY* name) params;
#include <entries/gl_entries.in>
#undef GL_ENTRY
    } gl;
};

/** The driver's own EGL entries. They take the driver's handles. */
struct egl_t {
#define EGL_ENTRY(Result, name, params, args, providers) Result(EGLAPIENTRY* name) params;
#include <entries/egl_entries.in>
#undef EGL_ENTRY
};

/**
 * What the loader's public EGL entries call: the platform's implementation of each, which takes the
 * application's handles and calls egl_t in turn. The few GL queries are here because the loader answers them
 * itself for some names (the extension list above all).
 */
struct platform_impl_t {
#define EGL_ENTRY(Result, name, params, args, providers) Result(EGLAPIENTRY* name) params;
#include <entries/egl_entries.in>
#undef EGL_ENTRY
    void(GL_APIENTRY* glGetBooleanv)(GLenum pname, GLboolean* data);
    void(GL_APIENTRY* glGetFloatv)(GLenum pname, GLfloat* data);
    void(GL_APIENTRY* glGetIntegerv)(GLenum pname, GLint* data);
    void(GL_APIENTRY* glGetInteger64v)(GLenum pname, GLint64* data);
    const GLubyte*(GL_APIENTRY* glGetString)(GLenum name);
    const GLubyte*(GL_APIENTRY* glGetStringi)(GLenum name, GLuint index);
};

} // namespace android
