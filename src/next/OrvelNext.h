// The driver's entries as they were before any hook was installed. Every call that the library makes for its own
// purposes, and every hook's call onward, goes through these tables: the connection's own may hold hooks.
#pragma once

#include <EGL/egldefs.h>

#include <functional>
#include <string>

namespace android::orvel::next {

/** The GLES entries of one driver; a row of the hook lists takes its signature from here. */
using GlTable = decltype(gl_hooks_t::gl);

/** Entries for variable-rate shading; null until resolved, and then while the driver lacks them. */
struct ExtTable {
    void(GL_APIENTRY* glShadingRateQCOM)(GLenum rate);
    void(GL_APIENTRY* glShadingRateEXT)(GLenum rate);
    void(GL_APIENTRY* glShadingRateCombinerOpsEXT)(GLenum combinerOp0, GLenum combinerOp1);
    void(GL_APIENTRY* glFramebufferShadingRateEXT)(GLenum target, GLenum attachment, GLuint texture, GLint baseLayer,
                                                   GLsizei numLayers, GLsizei texelWidth, GLsizei texelHeight);
    void(GL_APIENTRY* glGetFragmentShadingRatesEXT)(GLsizei samples, GLsizei maxCount, GLsizei* count,
                                                    GLenum* shadingRates);
};

#pragma GCC visibility push(hidden) // for the compiler: no detour through the global offset table on the draw path
extern GlTable gl;                  // no entry is null: what the driver lacks does nothing
extern egl_t egl;
extern platform_impl_t platform;
extern ExtTable ext;
#pragma GCC visibility pop

/** Answers whether the driver lacks the function of that name. */
using MissingTest = std::function<bool(const std::string& name)>;

/**
 * Copies the connection's tables. Call it once, on the thread that initialises EGL, before any hook is installed.
 * @param cnx not null, with a GLES 2 table
 * @param checkExtensionFunctions when set, called with a test for the extension functions that modules need; the
 *        test resolves a function of ExtTable through eglGetProcAddress and calls every other name missing
 */
void InitNextFunctions(egl_connection_t* cnx,
                       const std::function<void(const MissingTest& isMissing)>& checkExtensionFunctions = {});

/**
 * Tells whether the driver's extension string, asked for once, contains name (anywhere: a longer name that contains
 * it counts, deliberately). Needs a current context on first use, whose answer holds for all others. An empty name is
 * always there. Any thread; takes a lock.
 */
bool HasExtensions(const char* name);

/** Stands in for a missing glLabelObjectEXT; does nothing. */
void GL_APIENTRY DummyLabelObjectEXT(GLenum type, GLuint object, GLsizei length, const GLchar* label);

} // namespace android::orvel::next
