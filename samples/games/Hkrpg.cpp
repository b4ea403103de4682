// Hkrpg leaves its render targets bound from frame to frame and only walks through the units with glActiveTexture:
// whoever replaces a texture meanwhile has to put the new one into the unit. Where the player walks about, the avatar's
// icon and the minimap of the place are on the screen, each with its label.
#include "Games.h"

#include <iterator>

namespace sample {

namespace {

struct Place {
    const char* event;
    const char* label; // of the minimap
};

constexpr Place kPlaces[] = {{"city", "Minimap_Chap02_ADV_City_BackGround"},
                             {"x2", "Minimap_Chap02_ADV_X2_Background"},
                             {"x21", "Minimap_Chap02_MAZ_X21_BackGround"},
                             {"square", "Minimap_Chap01_ADV_Area_Square_01_BackGround"}};

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

class Hkrpg : public Game {
public:
    explicit Hkrpg(const Options& options)
        : Game(options, std::make_unique<RememberingUnits>()),
          mAvatarIcon(makeTexture("AvatarIcon", GL_RGBA8, {64, 64}, 1, GL_LINEAR)) {
        for (size_t i = 0; i < std::size(kPlaces); ++i) {
            mMinimaps[i] = makeTexture(kPlaces[i].label, GL_RGBA8, {64, 64}, 1, GL_LINEAR);
        }
    }

protected:
    bool drawEvent(const std::string& event) override {
        for (size_t i = 0; i < std::size(kPlaces); ++i) {
            if (event == kPlaces[i].event) {
                mUnits->bind(UNIT_NOISE, mMinimaps[i]);
                drawOverlays({6});
                mUnits->bind(UNIT_NOISE, mAvatarIcon);
                drawOverlays({6});
                return true;
            }
        }
        return false;
    }

private:
    const GLuint mAvatarIcon;
    GLuint mMinimaps[std::size(kPlaces)];
};

} // namespace

std::unique_ptr<Game> makeHkrpg(const Options& options) { return std::make_unique<Hkrpg>(options); }

} // namespace sample
