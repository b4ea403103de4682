// Hkrpg leaves its render targets bound from frame to frame and only walks through the units with glActiveTexture:
// whoever replaces a texture meanwhile has to put the new one into the unit.
#include "Games.h"

namespace sample {

namespace {

class RememberingUnits : public TextureUnits {
public:
    void bind(Unit unit, GLuint texture) override {
        glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
        // Textures are made and loaded through unit 0 at any time: what it holds is never relied upon.
        if (unit != 0 && mBound[unit] == texture) {
            return;
        }
        glBindTexture(GL_TEXTURE_2D, texture);
        mBound[unit] = texture;
    }

private:
    GLuint mBound[UNIT_COUNT] = {};
};

} // namespace

std::unique_ptr<Game> makeHkrpg(const Options& options) {
    return std::make_unique<Game>(options, std::make_unique<RememberingUnits>());
}

} // namespace sample
