#include "MultisampledTextures.h"

#include "HiddenExtensions.h"

#include <cstdlib>

namespace android::rig {

namespace {

GlTable sDriver{}; // written at the start

void GL_APIENTRY framebufferTexture2DMultisample(GLenum target, GLenum attachment, GLenum textureTarget, GLuint texture,
                                                 GLint level, GLsizei /*samples*/) {
    sDriver.glFramebufferTexture2D(target, attachment, textureTarget, texture, level);
}

void GL_APIENTRY renderbufferStorageMultisample(GLenum target, GLsizei /*samples*/, GLenum format, GLsizei width,
                                                GLsizei height) {
    sDriver.glRenderbufferStorage(target, format, width, height);
}

} // namespace

const char* offeredMultisampledExtension() {
    static constexpr char kExtension[] = "GL_EXT_multisampled_render_to_texture";
    const char* wanted = std::getenv("ORVEL_MULTISAMPLED");
    return wanted && *wanted && !isHiddenExtension(kExtension) ? kExtension : "";
}

void fillMultisampledEntries(GlTable* gl) {
    if (!*offeredMultisampledExtension() || gl->glFramebufferTexture2DMultisampleEXT) {
        return;
    }
    sDriver = *gl;
    gl->glFramebufferTexture2DMultisampleEXT = framebufferTexture2DMultisample;
    gl->glRenderbufferStorageMultisampleEXT = renderbufferStorageMultisample;
}

} // namespace android::rig
