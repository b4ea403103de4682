// How a game gets a texture to a sampler.
#pragma once

#include <GLES3/gl32.h>

namespace sample {

/** Every texture of the scene has a unit of its own, so that a game may leave it bound. */
enum Unit : GLint {
    UNIT_NOISE, // unit 0: also what the last copy samples, and active when a frame ends
    UNIT_SCENE_COLOUR,
    UNIT_SCENE_NORMAL,
    UNIT_SCENE_DEPTH,
    UNIT_GRAB,
    UNIT_OUTLINE,
    UNIT_COUNT,
};

class TextureUnits {
public:
    virtual ~TextureUnits() = default;
    virtual void bind(Unit unit, GLuint texture) {
        glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
        glBindTexture(GL_TEXTURE_2D, texture);
    }
};

} // namespace sample
