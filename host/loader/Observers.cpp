#include "Observers.h"

#include "Extensions.h"
#include "RenderTargets.h"
#include "Report.h"
#include "ShadingRate.h"
#include "SwapLoads.h"

#include <atomic>
#include <cstring>
#include <new>

namespace android::rig {

namespace {

// The entries that show a frame.
#define ORVEL_SWAPS(X)                                                                                                 \
    X(eglSwapBuffers)                                                                                                  \
    X(eglSwapBuffersWithDamageEXT)                                                                                     \
    X(eglSwapBuffersWithDamageKHR)

egl_t sDriverEgl{}; // what the observers call; written at the start
GlTable sDriverGl{};

thread_local bool tSwapExpected = false;

/** Passes the swap on and counts it, if it did not answer false. */
template <auto Slot>
struct CountedSwap;
template <typename... Params, EGLBoolean (*egl_t::*Slot)(Params...)>
struct CountedSwap<Slot> {
    static EGLBoolean EGLAPIENTRY call(Params... params) {
        endLoads();
        endShadingRateFrame();
        const EGLBoolean swapped = (sDriverEgl.*Slot)(params...);
        if (swapped) {
            count(DRIVER_SWAPS);
            if (!tSwapExpected) {
                count(FRAMES_REPEATED);
            }
            tSwapExpected = false;
        }
        return swapped;
    }
};

/** What a compiler reads of the strings: each up to its length or its end, the whole up to the first NUL. */
std::string shaderText(GLsizei count, const GLchar* const* string, const GLint* length) {
    std::string text;
    for (GLsizei i = 0; string && i < count; ++i) {
        if (string[i]) {
            text.append(string[i], length && length[i] >= 0 ? static_cast<size_t>(length[i]) : std::strlen(string[i]));
        }
    }
    return text.substr(0, text.find('\0'));
}

thread_local ShaderTextScope* tShaderText = nullptr;

void GL_APIENTRY observeShaderSource(GLuint shader, GLsizei count, const GLchar* const* string, const GLint* length) {
    if (tShaderText) {
        tShaderText->arrived(shader, count, string, length);
    }
    sDriverGl.glShaderSource(shader, count, string, length);
}

} // namespace

void observe(GlTable* gl, egl_t* egl) {
    editExtensionStrings(gl);
    observeShadingRates(gl, egl);
    sDriverGl = *gl;
    sDriverEgl = *egl;
    if (gl->glShaderSource) {
        gl->glShaderSource = observeShaderSource;
    }
    observeRenderTargets(gl);
    observeLoads(gl);
#define ORVEL_OBSERVE(name)                                                                                            \
    if (egl->name) {                                                                                                   \
        egl->name = CountedSwap<&egl_t::name>::call;                                                                   \
    }
    ORVEL_SWAPS(ORVEL_OBSERVE)
#undef ORVEL_OBSERVE
}

void expectSwap() {
    tSwapExpected = true;
    beginLoads();
}

ShaderTextScope::ShaderTextScope(GLuint shader, GLsizei count, const GLchar* const* string, const GLint* length)
    : mShader(shader) {
    rig::count(SHADERS);
    if (!isReporting()) {
        return;
    }
    try {
        mText = shaderText(count, string, length);
        tShaderText = this;
    } catch (const std::bad_alloc&) {
        // not compared, then; the program needs the memory more
    }
}

ShaderTextScope::~ShaderTextScope() { tShaderText = nullptr; }

void ShaderTextScope::arrived(GLuint shader, GLsizei count, const GLchar* const* string, const GLint* length) {
    if (shader != mShader) {
        return; // the library's own
    }
    try {
        compare(shaderText(count, string, length));
    } catch (const std::bad_alloc&) {
        // as above
    }
}

void ShaderTextScope::compare(const std::string& text) const {
    if (text == mText) {
        return;
    }
    rig::count(SHADERS_REWRITTEN);
    static std::atomic_flag first = ATOMIC_FLAG_INIT;
    if (!first.test_and_set(std::memory_order_relaxed)) {
        rig::count(SHADER_BYTES_BEFORE, mText.size());
        rig::count(SHADER_BYTES_AFTER, text.size());
        writeBesideReport("shader-before", ".glsl", mText);
        writeBesideReport("shader-after", ".glsl", text);
    }
}

} // namespace android::rig
