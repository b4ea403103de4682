// GL objects that the features make for themselves in the game's context.
#pragma once

#include <GLES3/gl32.h>

#include <span>

namespace android::orvel {

struct TextureParameter {
    GLenum name;
    GLint value;
};

/** @return a new GL_RGBA8 texture of one level; it stays bound to the active unit. The parameters are set in order. */
GLuint makeTexture(GLsizei width, GLsizei height, std::span<const TextureParameter> parameters);

/** @return a new framebuffer with that texture; it stays bound to be drawn into */
GLuint makeDrawFramebuffer(GLuint texture);

} // namespace android::orvel
