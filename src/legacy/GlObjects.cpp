#include "legacy/GlObjects.h"

#include "next/OrvelNext.h"

namespace android::orvel {

GLuint makeTexture(GLsizei width, GLsizei height, std::span<const TextureParameter> parameters) {
    GLuint texture = 0;
    next::gl.glGenTextures(1, &texture);
    next::gl.glBindTexture(GL_TEXTURE_2D, texture);
    next::gl.glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, width, height);
    for (const auto& [name, value] : parameters) {
        next::gl.glTexParameteri(GL_TEXTURE_2D, name, value);
    }
    return texture;
}

GLuint makeDrawFramebuffer(GLuint texture) {
    GLuint framebuffer = 0;
    next::gl.glGenFramebuffers(1, &framebuffer);
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    next::gl.glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    return framebuffer;
}

} // namespace android::orvel
