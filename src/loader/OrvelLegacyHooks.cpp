#include "loader/OrvelLegacyHooks.h"

#include "base/LabelText.h"
#include "base/OrvelExport.h"
#include "legacy/FrameCapture.h"
#include "legacy/HkrpgScenes.h"
#include "legacy/OrvelBackbufferControl.h"
#include "legacy/OrvelDRR.h"
#include "legacy/OrvelSRControl.h"
#include "legacy/SceneRecognizer.h"
#include "legacy/ShaderReplace.h"
#include "loader/OrvelThreadKey.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"
#include "settings/orvel_modify_params.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace android {

gl_hooks_t gOrvelHooks{};
decltype(platform_impl_t::eglSwapBuffers) gSwapbuffers = nullptr;

namespace {

namespace next = orvel::next;
using next::GlTable;

// Out of line: the gate before a hook (see the table below) must need no stack frame.
#define ORVEL_HOOK [[gnu::noinline]]

constexpr int kMarker = 0; // the pattern detectors read "0 elements" as a clear or an invalidation

/** Rewrites a size through dynamic resolution when that is on, else through the Yuanshen sizes. */
void modifySize(GLint& width, GLint& height) {
    if (!drrModifySizeParams(width, height)) {
        modifyRenderPrecisionYuanshen(width, height, 0);
    }
}

// ---- textures and framebuffers ------------------------------------------------------------------------

ORVEL_HOOK void GL_APIENTRY hookGlTexParameteri(GLenum target, GLenum pname, GLint param) {
    modifyAFValuePubg(pname, param);
    next::gl.glTexParameteri(target, pname, param);
}

ORVEL_HOOK void GL_APIENTRY hookGlTexStorage2D(GLenum target, GLsizei levels, GLenum format, GLsizei width,
                                               GLsizei height) {
    if (isOrvelDRREnable()) {
        drrUpdateTexDetailMap(format, width, height); // the game's size; may switch dynamic resolution off
        drrModifySizeParams(width, height);
    } else {
        modifyRenderPrecisionYuanshen(width, height, 1);
    }
    next::gl.glTexStorage2D(target, levels, format, width, height);
}

ORVEL_HOOK void GL_APIENTRY hookGlBindTexture(GLenum target, GLuint texture) {
    if (drrMarkCurrentTexture(target, texture)) { // the game's own name, before it may be swapped
        drrModifyBindedTexture(texture);
    }
    recognizeHkrpgTexture(texture);
    updateTexSizeArr();
    next::gl.glBindTexture(target, texture);
}

ORVEL_HOOK void GL_APIENTRY hookGlBindFramebuffer(GLenum target, GLuint framebuffer) {
    drrMarkCurrentFramebuffer(target, framebuffer);
    next::gl.glBindFramebuffer(target, framebuffer);
}

ORVEL_HOOK void GL_APIENTRY hookGlFramebufferTexture2D(GLenum target, GLenum attachment, GLenum textarget,
                                                       GLuint texture, GLint level) {
    drrUpdateFramebufferDetailMap(attachment, texture);
    next::gl.glFramebufferTexture2D(target, attachment, textarget, texture, level);
}

ORVEL_HOOK void GL_APIENTRY hookGlDeleteTextures(GLsizei n, const GLuint* textures) {
    drrDeleteTextures(n, textures);
    next::gl.glDeleteTextures(n, textures);
}

ORVEL_HOOK void GL_APIENTRY hookGlDeleteFramebuffers(GLsizei n, const GLuint* framebuffers) {
    drrDeleteFramebuffers(n, framebuffers);
    next::gl.glDeleteFramebuffers(n, framebuffers);
}

ORVEL_HOOK void GL_APIENTRY hookGlActiveTexture(GLenum texture) {
    next::gl.glActiveTexture(texture);
    drrActiveTexture(texture);
}

// ---- rectangles ---------------------------------------------------------------------------------------

ORVEL_HOOK void GL_APIENTRY hookGlViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    modifySize(width, height);
    next::gl.glViewport(x, y, width, height);
}

ORVEL_HOOK void GL_APIENTRY hookGlScissor(GLint x, GLint y, GLsizei width, GLsizei height) {
    modifySize(width, height);
    next::gl.glScissor(x, y, width, height);
}

ORVEL_HOOK void GL_APIENTRY hookGlBlitFramebuffer(GLint srcX0, GLint srcY0, GLint srcX1, GLint srcY1, GLint dstX0,
                                                  GLint dstY0, GLint dstX1, GLint dstY1, GLbitfield mask,
                                                  GLenum filter) {
    // Deliberately the far corners alone: a game's whole-target blits start at the origin.
    if (drrModifySizeParams(srcX1, srcY1)) { // one answer for both pairs
        drrModifySizeParams(dstX1, dstY1);
    } else {
        modifyRenderPrecisionYuanshen(srcX1, srcY1, 0);
        modifyRenderPrecisionYuanshen(dstX1, dstY1, 0);
    }
    next::gl.glBlitFramebuffer(srcX0, srcY0, srcX1, srcY1, dstX0, dstY0, dstX1, dstY1, mask, filter);
}

// ---- draws and clears ---------------------------------------------------------------------------------

ORVEL_HOOK void GL_APIENTRY hookGlDrawArrays(GLenum mode, GLint first, GLsizei count) {
    modifyShadingRate();
    next::gl.glDrawArrays(mode, first, count);
}

ORVEL_HOOK void GL_APIENTRY hookGlDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    modifyShadingRate();
    SceneRecognizer* const recognizer = mSceneRecognizer.get();
    checkBossPattern(recognizer); // before this draw's count joins the history
    updateEleCountArr(count, recognizer);
    checkTransferPattern(count, recognizer);
    checkLaunchPattern(count, recognizer);
    checkTransferPatternHP(count, recognizer);
    if (orvel::OrvelSRControl::isConfigured()) {
        orvel::OrvelSRControl::getInstance().hookForPostprocess();
    }
    next::gl.glDrawElements(mode, count, type, indices);
}

ORVEL_HOOK void GL_APIENTRY hookGlDrawElementsBaseVertex(GLenum mode, GLsizei count, GLenum type, const void* indices,
                                                         GLint basevertex) {
    SceneRecognizer* const recognizer = mSceneRecognizer.get();
    checkTransferPattern(count, recognizer);
    checkLaunchPattern(count, recognizer);
    checkTransferPatternHP(count, recognizer);
    next::gl.glDrawElementsBaseVertex(mode, count, type, indices, basevertex);
}

ORVEL_HOOK void GL_APIENTRY hookGlClear(GLbitfield mask) {
    checkTransferPattern(kMarker); // deliberate: whatever the mask
    checkLaunchPattern(kMarker);
    next::gl.glClear(mask);
}

ORVEL_HOOK void GL_APIENTRY hookGlInvalidateFramebuffer(GLenum target, GLsizei numAttachments,
                                                        const GLenum* attachments) {
    checkTransferPatternHP(kMarker);
    next::gl.glInvalidateFramebuffer(target, numAttachments, attachments);
}

// ---- programs, uniforms, labels -----------------------------------------------------------------------

ORVEL_HOOK void GL_APIENTRY hookShaderSource(GLuint shader, GLsizei count, const GLchar* const* string,
                                             const GLint* length) {
    if (count == 1 && string) {
        updateShaderCode(shader, count, string);
    }
    next::gl.glShaderSource(shader, count, string, length);
}

ORVEL_HOOK void GL_APIENTRY hookGlUseProgram(GLuint program) {
    next::gl.glUseProgram(program);
    drrMarkCurrentProgram(program);
}

ORVEL_HOOK void GL_APIENTRY hookGlUniform4fv(GLint location, GLsizei count, const GLfloat* value) {
    constexpr int kVec4 = 4;
    GLfloat copy[4 * kVec4]; // the game's array is never written
    if (!value) {            // harmless to the driver where the location is -1
        next::gl.glUniform4fv(location, count, value);
        return;
    }
    if (count == 1) {
        std::memcpy(copy, value, kVec4 * sizeof(GLfloat));
        if (!drrModifyShaderUniform4fv_1(location, copy)) {
            modifyRenderPrecisionYuanshenShaderUniform(1, copy); // deliberately the count, not the location
        }
        value = copy;
    } else if (count == 4 && !isOrvelDRREnable() && fixPostprocessLowIssue()) {
        std::memcpy(copy, value, sizeof copy);
        modifyPostprocessLowParam(copy);
        value = copy;
    }
    next::gl.glUniform4fv(location, count, value);
}

ORVEL_HOOK void GL_APIENTRY hookGlUniform2uiv(GLint location, GLsizei count, const GLuint* value) {
    if (count != 1 || !value) {
        next::gl.glUniform2uiv(location, count, value);
        return;
    }
    GLint size[2];
    std::memcpy(size, value, sizeof size);
    modifyRenderPrecisionYuanshen(size[0], size[1], 0); // whether dynamic resolution is on or not
    GLuint copy[2];
    std::memcpy(copy, size, sizeof copy);
    next::gl.glUniform2uiv(location, 1, copy);
}

/**
 * A label as the features compare it: zero-terminated. A game may pass a length and no terminator; such a label is
 * copied. One that does not fit is longer than any that a feature knows and reads as no label they know.
 */
class TerminatedLabel {
public:
    TerminatedLabel(GLsizei length, const GLchar* label) : mText(label) {
        if (label && length > 0) {
            const std::string_view text = orvel::labelText(std::min<GLsizei>(length, sizeof mCopy - 1), label);
            mCopy[text.copy(mCopy, text.size())] = '\0';
            mText = mCopy;
        }
    }
    TerminatedLabel(const TerminatedLabel&) = delete; // points into itself
    TerminatedLabel& operator=(const TerminatedLabel&) = delete;
    const char* get() const { return mText; }

private:
    char mCopy[128];
    const char* mText;
};

ORVEL_HOOK void GL_APIENTRY hookGlLabelObjectEXT(GLenum type, GLuint object, GLsizei length, const GLchar* label) {
    if (const TerminatedLabel text(length, label); text.get()) {
        markHkrpgTexture(object, text.get());
        drrMarkLabelObject(object, text.get());
        orvel::OrvelSRControl::getInstance().recordFSRProgramByProgramLabel(type, object, text.get());
    }
    next::gl.glLabelObjectEXT(type, object, length, label);
}

// ---- read-back ----------------------------------------------------------------------------------------

/** Spelt so on purpose; others know the hook by this name. */
ORVEL_HOOK void GL_APIENTRY hppkGlReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format,
                                             GLenum type, void* pixels) {
    if (processGameCapture(x, y, width, height, format, type, pixels)) {
        return; // served from a copy at the size that the game asked for
    }
    next::gl.glReadPixels(x, y, width, height, format, type, pixels);
}

// ---- EGL ----------------------------------------------------------------------------------------------

EGLBoolean EGLAPIENTRY hookEglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    saveFrame(display, surface);
    const EGLBoolean swapped = next::platform.eglSwapBuffers(display, surface);
    onEglSwapBuffersEnd();
    const EGLBoolean answer = swapFrame(display, surface, swapped);
    orvel::OrvelSRControl::getInstance().doGameSuperResolution();
    return answer;
}

EGLBoolean EGLAPIENTRY hookSGameEglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    saveFrame(display, surface);
    return swapFrame(display, surface, gSwapbuffers(display, surface));
}

EGLSurface EGLAPIENTRY hookEglCreateWindowSurface(EGLDisplay display, EGLConfig config, EGLNativeWindowType window,
                                                  const EGLint* attribList) {
    const auto* prefs = orvel::OrvelSettings::getInstance().mPrefs;
    if (prefs && prefs->mBackbufferSizeValid) {
        // A window is a pointer on a device and may be a number elsewhere.
        orvel::OrvelBackbufferControl::getInstance().updateANativeWindow(
            reinterpret_cast<ANativeWindow*>(uintptr_t(window)));
    }
    return next::platform.eglCreateWindowSurface(display, config, window, attribList);
}

// ---- the table ----------------------------------------------------------------------------------------

// Whether anything behind a hook is switched on. A feature that is added to a hook must be added here, too.
namespace on {
bool always() { return true; }
bool anisotropy() { return mEnableAFModify; }
bool capture() { return mGameSCSize.width >= 1 && mGameSCSize.height >= 1; }
bool clearPatterns() { return mEnableYSTransferRecognize || mEnableYSLaunchRecognize; }
bool dynamicResolution() { return isOrvelDRREnable(); }
bool patternHP() { return mEnableHPTransferRecognize; }
bool patterns() { return clearPatterns() || patternHP(); }
bool shadingRate() { return mEnableShadingRate; }
bool yuanshenSizes() { return mEnableScaleResolutionSize || orvel::OrvelSRControl::isBackbufferSizeAsked(); }
bool sizes() { return dynamicResolution() || yuanshenSizes(); }
bool binding() { return dynamicResolution() || mEnableHkrpgSceneRecognize || mEnableYSSceneRecognize; }
bool draw() { return shadingRate() || mEnableYSSceneRecognize || patterns() || orvel::OrvelSRControl::isConfigured(); }
} // namespace on

/**
 * What stands in the table for a hook: while nothing behind it is on, the call goes on to the driver without a stack
 * frame, at the cost of the switches' loads. Such a test must not look at the call's arguments.
 */
template <auto Slot, auto Hook, bool (*IsOn)()>
struct Gate;
template <typename R, typename... Args, R (*GlTable::*Slot)(Args...), R (*Hook)(Args...), bool (*IsOn)()>
struct Gate<Slot, Hook, IsOn> {
    static R GL_APIENTRY call(Args... args) {
        if (IsOn()) [[unlikely]] {
            return Hook(args...);
        }
        return (next::gl.*Slot)(args...);
    }
};

} // namespace

// The hooked entries in the order in which they are written, each with its hook and what that depends on. A hook of
// another signature does not compile.
#define ORVEL_LEGACY_GL(X)                                                                                             \
    X(glTexParameteri, hookGlTexParameteri, anisotropy)                                                                \
    X(glTexStorage2D, hookGlTexStorage2D, sizes)                                                                       \
    X(glViewport, hookGlViewport, sizes)                                                                               \
    X(glDrawArrays, hookGlDrawArrays, shadingRate)                                                                     \
    X(glBindTexture, hookGlBindTexture, binding)                                                                       \
    X(glDrawElements, hookGlDrawElements, draw)                                                                        \
    X(glDrawElementsBaseVertex, hookGlDrawElementsBaseVertex, patterns)                                                \
    X(glClear, hookGlClear, clearPatterns)                                                                             \
    X(glScissor, hookGlScissor, sizes)                                                                                 \
    X(glBlitFramebuffer, hookGlBlitFramebuffer, sizes)                                                                 \
    X(glInvalidateFramebuffer, hookGlInvalidateFramebuffer, patternHP)                                                 \
    X(glUniform4fv, hookGlUniform4fv, sizes)                                                                           \
    X(glShaderSource, hookShaderSource, always)                                                                        \
    X(glBindFramebuffer, hookGlBindFramebuffer, dynamicResolution)                                                     \
    X(glFramebufferTexture2D, hookGlFramebufferTexture2D, dynamicResolution)                                           \
    X(glDeleteTextures, hookGlDeleteTextures, dynamicResolution)                                                       \
    X(glDeleteFramebuffers, hookGlDeleteFramebuffers, dynamicResolution)                                               \
    X(glLabelObjectEXT, hookGlLabelObjectEXT, always)                                                                  \
    X(glUseProgram, hookGlUseProgram, dynamicResolution)                                                               \
    X(glActiveTexture, hookGlActiveTexture, dynamicResolution)                                                         \
    X(glUniform2uiv, hookGlUniform2uiv, yuanshenSizes)                                                                 \
    X(glReadPixels, hppkGlReadPixels, capture)

void installOrvelHooks(gl_hooks_t* table) {
#define ORVEL_WRITE(entry, hook, condition) table->gl.entry = Gate<&GlTable::entry, hook, on::condition>::call;
    ORVEL_LEGACY_GL(ORVEL_WRITE)
#undef ORVEL_WRITE
}

void installVoHooks(egl_connection_t* cnx) {
    installOrvelHooks(cnx->hooks[egl_connection_t::GLESv2_INDEX]);
    cnx->platform.eglSwapBuffers = hookEglSwapBuffers;
    cnx->platform.eglCreateWindowSurface = hookEglCreateWindowSurface;
}

void installOrvelPUBGHooks(gl_hooks_t* table) {
    table->gl.glTexParameteri = Gate<&GlTable::glTexParameteri, hookGlTexParameteri, on::anisotropy>::call;
}

void installOrvelSGAMEHooks(egl_connection_t* cnx) {
    gSwapbuffers = cnx->platform.eglSwapBuffers;
    cnx->platform.eglSwapBuffers = hookSGameEglSwapBuffers;
}

gl_hooks_t* getOrvelHooks() {
    gOrvelHooks = *static_cast<const gl_hooks_t*>(orvel::getThreadSpecific());
    installOrvelHooks(&gOrvelHooks);
    return &gOrvelHooks;
}

ORVEL_EXPORT void onEglSwapBuffersEnd() {
    drrOnEglSwapBuffersEnd();
    recognizeHkrpgScene();
}

} // namespace android
