#include "ShadingRate.h"

#include "HiddenExtensions.h"
#include "LogFile.h"
#include "RateView.h"
#include "Report.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unistd.h>
#include <utility>

namespace android::rig {

namespace {

/** What draws, as far as programs of GLES do. */
#define ORVEL_DRAWS(X)                                                                                                 \
    X(glDrawArrays)                                                                                                    \
    X(glDrawArraysIndirect)                                                                                            \
    X(glDrawArraysInstanced)                                                                                           \
    X(glDrawArraysInstancedANGLE)                                                                                      \
    X(glDrawArraysInstancedBaseInstanceEXT)                                                                            \
    X(glDrawArraysInstancedEXT)                                                                                        \
    X(glDrawElements)                                                                                                  \
    X(glDrawElementsBaseVertex)                                                                                        \
    X(glDrawElementsBaseVertexEXT)                                                                                     \
    X(glDrawElementsBaseVertexOES)                                                                                     \
    X(glDrawElementsIndirect)                                                                                          \
    X(glDrawElementsInstanced)                                                                                         \
    X(glDrawElementsInstancedANGLE)                                                                                    \
    X(glDrawElementsInstancedBaseInstanceEXT)                                                                          \
    X(glDrawElementsInstancedBaseVertex)                                                                               \
    X(glDrawElementsInstancedBaseVertexBaseInstanceEXT)                                                                \
    X(glDrawElementsInstancedBaseVertexEXT)                                                                            \
    X(glDrawElementsInstancedBaseVertexOES)                                                                            \
    X(glDrawElementsInstancedEXT)                                                                                      \
    X(glDrawRangeElements)                                                                                             \
    X(glDrawRangeElementsBaseVertex)                                                                                   \
    X(glDrawRangeElementsBaseVertexEXT)                                                                                \
    X(glDrawRangeElementsBaseVertexOES)                                                                                \
    X(glMultiDrawArraysEXT)                                                                                            \
    X(glMultiDrawArraysIndirectEXT)                                                                                    \
    X(glMultiDrawElementsBaseVertexEXT)                                                                                \
    X(glMultiDrawElementsEXT)                                                                                          \
    X(glMultiDrawElementsIndirectEXT)

#define ORVEL_DRAW_NAME(name) DRAW_##name,
enum DrawEntry { ORVEL_DRAWS(ORVEL_DRAW_NAME) };
#undef ORVEL_DRAW_NAME
#define ORVEL_DRAW_TEXT(name) #name,
constexpr const char* kDrawNames[] = {ORVEL_DRAWS(ORVEL_DRAW_TEXT)};
#undef ORVEL_DRAW_TEXT

GlTable sDriver{}; // what the observers call; written at the start
egl_t sDriverEgl{};
bool sObserved = false; // written at the start

const char* environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

constexpr char kExt[] = "GL_EXT_fragment_shading_rate";
constexpr char kQcom[] = "GL_QCOM_shading_rate";

bool isOffered(const char* option, const char* extension) {
    const std::string offered = environment("ORVEL_SHADING_RATE");
    return (offered == option || offered == "both") && !isHiddenExtension(extension);
}
bool isExtOffered() { return isOffered("ext", kExt); }
bool isQcomOffered() { return isOffered("qcom", kQcom); }

/** The state of one context; touched only by the thread on which it is current. */
struct ContextState {
    int number = 0; // in order of creation
    RateCode rate = kRate1x1;
    GLenum combiners[2] = {GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT,
                           GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT}; // with the primitive's rate, the image's
    std::map<GLuint, RateImage> images;                                    // by framebuffer
    uint64_t frame = 0;                                                    // the one that draws are counted in
    unsigned draws = 0;
    RateView view{sDriver};
};

/** @return the state of the current context; of none at all it is one, too */
ContextState& current(EGLContext context = EGL_NO_CONTEXT, bool isNew = false) {
    static std::mutex mutex;
    static auto& states = *new std::map<EGLContext, std::unique_ptr<ContextState>>; // threads draw until the end
    static int count = 0;
    if (!isNew) {
        context = sDriverEgl.eglGetCurrentContext();
    }
    const std::lock_guard lock(mutex);
    auto& state = states[context];
    if (!state || isNew) { // a context may get the handle of one that is gone
        state = std::make_unique<ContextState>();
        state->number = ++count;
    }
    return *state;
}

GLint ask(GLenum name) {
    GLint value = 0;
    sDriver.glGetIntegerv(name, &value);
    return value;
}

// ---- the extensions' entries -------------------------------------------------------------------------------------

void GL_APIENTRY shadingRate(GLenum rate) {
    if (const auto code = rateCodeOf(rate)) {
        current().rate = *code;
    } else {
        RIG_LOGE("no shading rate: 0x%x", rate);
    }
}

void GL_APIENTRY shadingRateCombinerOps(GLenum withPrimitive, GLenum withImage) {
    for (const GLenum op : {withPrimitive, withImage}) {
        if (op < GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT || op > GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MUL_EXT) {
            RIG_LOGE("no combiner of shading rates: 0x%x", op);
            return;
        }
    }
    ContextState& state = current();
    state.combiners[0] = withPrimitive;
    state.combiners[1] = withImage;
}

/** Asks for the texture's size; GLES before 3.1 has no such question. */
RateImage describe(GLuint texture) {
    RateImage image{texture, 0, 0};
    if (isGles31(sDriver) && sDriver.glIsTexture(texture)) { // a name that is none would be made one
        GLint size[2] = {};
        const GLint bound = ask(GL_TEXTURE_BINDING_2D);
        sDriver.glBindTexture(GL_TEXTURE_2D, texture);
        sDriver.glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &size[0]);
        sDriver.glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &size[1]);
        sDriver.glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(bound));
        image.width = static_cast<uint32_t>(size[0]);
        image.height = static_cast<uint32_t>(size[1]);
    }
    return image;
}

void GL_APIENTRY framebufferShadingRate(GLenum target, GLenum attachment, GLuint texture, GLint, GLsizei, GLsizei,
                                        GLsizei) {
    const bool isRead = target == GL_READ_FRAMEBUFFER;
    const auto framebuffer =
        static_cast<GLuint>(ask(isRead ? GL_READ_FRAMEBUFFER_BINDING : GL_DRAW_FRAMEBUFFER_BINDING));
    if (attachment != GL_SHADING_RATE_ATTACHMENT_EXT || framebuffer == 0) {
        RIG_LOGE("no place for a shading-rate image: attachment 0x%x of framebuffer %u", attachment, framebuffer);
    } else if (texture == 0) {
        current().images.erase(framebuffer);
    } else {
        current().images[framebuffer] = describe(texture);
    }
}

void GL_APIENTRY getFragmentShadingRates(GLsizei, GLsizei maxCount, GLsizei* count, GLenum* rates) {
    GLsizei given = 0;
    for (GLenum rate = GL_SHADING_RATE_4X4_PIXELS_EXT; rate >= GL_SHADING_RATE_1X1_PIXELS_EXT; --rate) {
        if (rates && given < maxCount) {
            rates[given++] = rate; // the coarsest first
        }
    }
    if (count) {
        *count =
            rates ? given : static_cast<GLsizei>(1 + GL_SHADING_RATE_4X4_PIXELS_EXT - GL_SHADING_RATE_1X1_PIXELS_EXT);
    }
}

// ---- what is told of a draw --------------------------------------------------------------------------------------

const char* nameOf(GLenum combiner) {
    switch (combiner) {
    case GL_FRAGMENT_SHADING_RATE_COMBINER_OP_REPLACE_EXT:
        return "replace";
    case GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MIN_EXT:
        return "min";
    case GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MAX_EXT:
        return "max";
    case GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MUL_EXT:
        return "mul";
    default:
        return "keep";
    }
}

/** A primitive's own rate and that of a missing image are 1x1. */
DrawRate rateInForce(const ContextState& state, GLuint framebuffer) {
    DrawRate draw;
    draw.rate = combine(state.combiners[0], state.rate, kRate1x1);
    if (const auto image = state.images.find(framebuffer); image != state.images.end()) {
        draw.image = image->second;
        draw.imageCombiner = state.combiners[1];
    } else {
        draw.rate = combine(state.combiners[1], draw.rate, kRate1x1);
    }
    return draw;
}

/** One write a line: nothing is lost when the program is killed, and lines of several processes do not mix. */
void trace(const char* path, const ContextState& state, DrawEntry entry, GLuint framebuffer, const DrawRate& rate) {
    static const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    GLint viewport[4] = {};
    sDriver.glGetIntegerv(GL_VIEWPORT, viewport);
    const auto number = [](auto value) { return std::to_string(value); };
    std::string line = "{\"frame\": " + number(state.frame) + ", \"context\": " + number(state.number) +
                       ", \"draw\": " + number(state.draws) + ", \"entry\": \"" + kDrawNames[entry] +
                       "\", \"rate\": \"" + textOf(rate.rate) + "\", \"framebuffer\": " + number(framebuffer) +
                       ", \"image\": ";
    if (rate.image.texture) {
        line += "{\"texture\": " + number(rate.image.texture) + ", \"width\": " + number(rate.image.width) +
                ", \"height\": " + number(rate.image.height) + ", \"combiner\": \"" + nameOf(rate.imageCombiner) +
                "\"}";
    } else {
        line += "null";
    }
    line += ", \"viewport\": [" + number(viewport[0]) + ", " + number(viewport[1]) + ", " + number(viewport[2]) + ", " +
            number(viewport[3]) + "]}\n";
    if (write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        static std::once_flag once;
        std::call_once(once, [&] { RIG_LOGE("cannot write %s: %s", path, std::strerror(errno)); });
    }
}

/** @return whether the frame is on the list of numbers and ranges, "3,10-12" */
bool isViewed(uint64_t frame) {
    static const char* const folder = environment("ORVEL_SHADING_RATE_VIEW");
    static const char* const frames = environment("ORVEL_SHADING_RATE_FRAMES");
    const char* text = *folder ? frames : "";
    while (*text) {
        char* end = nullptr;
        const uint64_t first = std::strtoull(text, &end, 10);
        const uint64_t last = *end == '-' ? std::strtoull(end + 1, &end, 10) : first;
        if (frame >= first && frame <= last && end != text) {
            return true;
        }
        text = end + std::strcspn(end, ",");
        text += *text == ',';
    }
    return false;
}

void noteDraw(DrawEntry entry, const std::function<void()>& draw) {
    static const char* const traceFile = environment("ORVEL_SHADING_RATE_TRACE");
    try {
        ContextState& state = current();
        const auto framebuffer = static_cast<GLuint>(ask(GL_DRAW_FRAMEBUFFER_BINDING));
        const DrawRate rate = rateInForce(state, framebuffer);
        count(DRAWS);
        if (rate.rate != kRate1x1 || rate.imageCombiner != GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT) {
            count(COARSE_DRAWS);
        }
        if (*traceFile) {
            trace(traceFile, state, entry, framebuffer, rate);
        }
        if (isViewed(state.frame)) {
            state.view.cover(framebuffer, rate, draw);
        }
        ++state.draws;
    } catch (const std::exception&) {
        // out of memory: the program needs it more
    }
}

template <auto Slot, DrawEntry Name>
struct Draw;
template <typename... Params, void (*GlTable::*Slot)(Params...), DrawEntry Name>
struct Draw<Slot, Name> {
    static void GL_APIENTRY call(Params... params) {
        (sDriver.*Slot)(params...);
        noteDraw(Name, [&] { (sDriver.*Slot)(params...); });
    }
};

void GL_APIENTRY clear(GLbitfield mask) {
    sDriver.glClear(mask);
    if ((mask & GL_DEPTH_BUFFER_BIT) && isViewed(current().frame)) {
        try {
            current().view.clearDepth(static_cast<GLuint>(ask(GL_DRAW_FRAMEBUFFER_BINDING)));
        } catch (const std::exception&) {
            // as above
        }
    }
}

void GL_APIENTRY deleteFramebuffers(GLsizei n, const GLuint* framebuffers) {
    sDriver.glDeleteFramebuffers(n, framebuffers);
    ContextState& state = current();
    for (GLsizei i = 0; framebuffers && i < n; ++i) {
        state.images.erase(framebuffers[i]);
    }
}

void GL_APIENTRY getIntegerv(GLenum name, GLint* data) {
    if ((name == GL_SHADING_RATE_EXT || name == GL_SHADING_RATE_QCOM) && data) {
        for (GLenum rate = GL_SHADING_RATE_1X1_PIXELS_EXT; rate <= GL_SHADING_RATE_4X4_PIXELS_EXT; ++rate) {
            if (rateCodeOf(rate) == current().rate) {
                *data = static_cast<GLint>(rate);
            }
        }
        return;
    }
    sDriver.glGetIntegerv(name, data);
}

EGLContext EGLAPIENTRY createContext(EGLDisplay dpy, EGLConfig config, EGLContext share, const EGLint* attribs) {
    EGLContext context = sDriverEgl.eglCreateContext(dpy, config, share, attribs);
    if (context != EGL_NO_CONTEXT) {
        current(context, /*isNew=*/true);
    }
    return context;
}

bool hasAllEntries(const GlTable& gl, const egl_t& egl) {
    return egl.eglCreateContext && egl.eglGetCurrentContext && gl.glGetIntegerv && gl.glGetString && gl.glClear &&
           gl.glDeleteFramebuffers && gl.glGetTexLevelParameteriv;
}

} // namespace

const char* offeredShadingRateExtensions() {
    if (isExtOffered()) {
        return isQcomOffered() ? "GL_QCOM_shading_rate GL_EXT_fragment_shading_rate" : kExt;
    }
    return isQcomOffered() ? kQcom : "";
}

void fillShadingRateEntries(GlTable* gl) {
    if (isQcomOffered()) {
        gl->glShadingRateQCOM = shadingRate;
    }
    if (isExtOffered()) {
        gl->glShadingRateEXT = shadingRate;
        gl->glShadingRateCombinerOpsEXT = shadingRateCombinerOps;
        gl->glFramebufferShadingRateEXT = framebufferShadingRate;
        gl->glGetFragmentShadingRatesEXT = getFragmentShadingRates;
    }
}

void observeShadingRates(GlTable* gl, egl_t* egl) {
    const bool isAsked = *offeredShadingRateExtensions() || *environment("ORVEL_SHADING_RATE_TRACE") ||
                         *environment("ORVEL_SHADING_RATE_VIEW");
    sDriver = *gl; // the extensions' entries need it, too
    sDriverEgl = *egl;
    sObserved = isAsked && hasAllEntries(*gl, *egl);
    if (!sObserved) {
        return;
    }
#define ORVEL_OBSERVE(name)                                                                                            \
    if (gl->name) {                                                                                                    \
        gl->name = Draw<&GlTable::name, DRAW_##name>::call;                                                            \
    }
    ORVEL_DRAWS(ORVEL_OBSERVE)
#undef ORVEL_OBSERVE
    gl->glClear = clear;
    gl->glDeleteFramebuffers = deleteFramebuffers;
    gl->glGetIntegerv = getIntegerv;
    egl->eglCreateContext = createContext;
}

void endShadingRateFrame() {
    if (!sObserved) {
        return;
    }
    try {
        ContextState& state = current();
        const uint64_t frame = state.frame++;
        state.draws = 0;
        if (isViewed(frame)) {
            state.view.write(std::string(environment("ORVEL_SHADING_RATE_VIEW")) + "/frame-" + std::to_string(frame) +
                             "-context-" + std::to_string(state.number));
        }
    } catch (const std::exception& error) {
        RIG_LOGE("no picture of the shading rates: %s", error.what());
    }
}

} // namespace android::rig
