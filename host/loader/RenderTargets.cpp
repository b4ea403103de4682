#include "RenderTargets.h"

#include "Report.h"

#include <exception>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace android::rig {

namespace {

struct Texture {
    GLenum format = 0;
    GLsizei width = 0;
    GLsizei height = 0;
};

struct Target {
    GLuint texture = 0;
    Texture detail;
};

using Place = std::pair<GLuint, GLenum>; // framebuffer and attachment point
using Targets = std::map<Place, Target>;

GlTable sDriver{};                                // what the observers call; written at the start
std::mutex sMutex;                                // guards the two maps; entered a few times a frame at most
auto& sTextures = *new std::map<GLuint, Texture>; // never freed: threads may draw while the process ends
auto& sAttached = *new std::map<Place, GLuint>;

thread_local bool tInSwap = false;
thread_local bool tAllocated = false; // a texture was made during this swap
thread_local Targets tBefore;

/** Under sMutex. */
Targets targets() {
    Targets all;
    for (const auto& [place, texture] : sAttached) {
        const auto detail = sTextures.find(texture);
        if (detail != sTextures.end()) {
            all[place] = {texture, detail->second};
        }
    }
    return all;
}

GLuint boundName(GLenum query) {
    GLint name = 0;
    sDriver.glGetIntegerv(query, &name);
    return static_cast<GLuint>(name);
}

/** Runs what may run out of memory: the program needs that more than the report does. */
template <typename Work>
void quietly(const Work& work) {
    try {
        const std::lock_guard lock(sMutex);
        work();
    } catch (const std::exception&) {
    }
}

void GL_APIENTRY texStorage2D(GLenum target, GLsizei levels, GLenum format, GLsizei width, GLsizei height) {
    sDriver.glTexStorage2D(target, levels, format, width, height);
    if (target != GL_TEXTURE_2D || !isReporting()) {
        return;
    }
    const GLuint name = boundName(GL_TEXTURE_BINDING_2D);
    quietly([&] {
        if (tInSwap && !std::exchange(tAllocated, true)) {
            tBefore = targets();
        }
        sTextures[name] = {format, width, height};
    });
}

void GL_APIENTRY framebufferTexture2D(GLenum target, GLenum attachment, GLenum textarget, GLuint texture, GLint level) {
    sDriver.glFramebufferTexture2D(target, attachment, textarget, texture, level);
    if (!isReporting()) {
        return;
    }
    const GLuint framebuffer =
        boundName(target == GL_READ_FRAMEBUFFER ? GL_READ_FRAMEBUFFER_BINDING : GL_DRAW_FRAMEBUFFER_BINDING);
    quietly([&] { sAttached[{framebuffer, attachment}] = texture; });
}

void GL_APIENTRY deleteFramebuffers(GLsizei n, const GLuint* framebuffers) {
    sDriver.glDeleteFramebuffers(n, framebuffers);
    quietly([&] {
        for (GLsizei i = 0; framebuffers && i < n; ++i) {
            std::erase_if(sAttached, [&](const auto& entry) { return entry.first.first == framebuffers[i]; });
        }
    });
}

void GL_APIENTRY deleteTextures(GLsizei n, const GLuint* textures) {
    sDriver.glDeleteTextures(n, textures);
    quietly([&] {
        for (GLsizei i = 0; textures && i < n; ++i) {
            sTextures.erase(textures[i]);
        }
    });
}

const char* nameOf(GLenum attachment) {
    switch (attachment) {
    case GL_COLOR_ATTACHMENT0:
        return "color0";
    case GL_COLOR_ATTACHMENT1:
        return "color1";
    case GL_COLOR_ATTACHMENT2:
        return "color2";
    case GL_DEPTH_ATTACHMENT:
        return "depth";
    case GL_STENCIL_ATTACHMENT:
        return "stencil";
    default:
        return "other";
    }
}

std::string jsonOf(const Targets& all) {
    std::string text = "[";
    for (const auto& [place, target] : all) {
        const auto field = [&text](const char* name, unsigned value) {
            text += std::string(", \"") + name + "\": " + std::to_string(value);
        };
        text += text.size() > 1 ? ", " : "";
        text += std::string("{\"attachment\": \"") + nameOf(place.second) + '"';
        field("framebuffer", place.first);
        field("texture", target.texture);
        field("format", target.detail.format);
        field("width", static_cast<unsigned>(target.detail.width));
        field("height", static_cast<unsigned>(target.detail.height));
        text += '}';
    }
    return text + "]";
}

/** @return the textures that a place held before and no longer holds */
std::set<GLuint> replaced(const Targets& before, const Targets& after) {
    std::set<GLuint> textures;
    for (const auto& [place, target] : before) {
        const auto now = after.find(place);
        if (now != after.end() && now->second.texture != target.texture) {
            textures.insert(target.texture);
        }
    }
    return textures;
}

} // namespace

void observeRenderTargets(GlTable* gl) {
    sDriver = *gl;
    if (!gl->glTexStorage2D || !gl->glFramebufferTexture2D || !gl->glDeleteFramebuffers || !gl->glDeleteTextures ||
        !gl->glGetIntegerv) {
        return;
    }
    gl->glTexStorage2D = texStorage2D;
    gl->glFramebufferTexture2D = framebufferTexture2D;
    gl->glDeleteFramebuffers = deleteFramebuffers;
    gl->glDeleteTextures = deleteTextures;
}

SwapScope::SwapScope() {
    tInSwap = true;
    tAllocated = false;
}

SwapScope::~SwapScope() {
    tInSwap = false;
    if (!tAllocated) {
        return;
    }
    quietly([] {
        const Targets after = targets();
        const std::set<GLuint> textures = replaced(tBefore, after);
        if (!textures.empty()) {
            count(SWITCHES);
            count(TEXTURES_REPLACED, textures.size());
            appendBesideReport("switches", ".jsonl",
                               "{\"frame\": " + std::to_string(countOf(PROGRAM_SWAPS)) +
                                   ", \"before\": " + jsonOf(tBefore) + ", \"after\": " + jsonOf(after) + "}\n");
        }
    });
}

} // namespace android::rig
