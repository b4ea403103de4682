// SGame draws its scene, clears depth and stencil of the window, or has a program of its own do that, and draws the
// interface over it. Textures tell where the player is: each phase has some that no other one shows. What a battle
// needs is loaded anew for each one.
#include "Games.h"

#include "Shaders.h"

#include <utility>
#include <vector>

namespace sample {

namespace {

constexpr char kMatrixUniform[] = "hlslcc_mtx4x4unity_MatrixVP";

class SGame : public Game {
public:
    explicit SGame(const Options& options)
        : Game(options, std::make_unique<TextureUnits>()),
          mIsMultisampled(options.multisampled),
          mEmptySky("Lobby Sky", shaders::fullScreen(), shaders::sky()),
          mTowers("Battle Tower", shaders::placedByColumns(), shaders::object()),
          mClear("Hidden/Internal-Clear", shaders::fullScreen(), shaders::copy()),
          mLobbyBanner(makeIcon("lobby_banner")),
          mStage(makeIcon("hero_stage")),
          mHeroList(makeIcon("hero_list_ui")),
          mSkinPreview(makeIcon("hero_skin_preview")),
          mResultTitle(makeIcon("result_title")) {}

protected:
    void beginEvent(const std::string& event) override {
        if (event == "loading") {
            loadBattle();
        }
    }

    void drawScene(int frame) override {
        if (event().empty() || event() == "loading") {
            drawSky();
        } else {
            Game::drawScene(frame);
        }
        if (event() == "masked") {
            clearByProgram();
        } else {
            glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        }
        if (event().empty()) {
            mUnits->bind(UNIT_NOISE, mLobbyBanner);
        } else if (event() == "heroes") {
            mUnits->bind(UNIT_NOISE, mStage);
            mUnits->bind(UNIT_NOISE, mSkinPreview); // still the scene, though it is drawn behind the clear
            drawOverlays({120});
        }
    }

    void drawOwnScenery(int /*frame*/) override {
        for (const Vec3& place : {Vec3{3.5F, 0, 2}, Vec3{-3.5F, 0, 2}}) {
            mTowers.use();
            mTowers.setColumns(kMatrixUniform, mScene.camera().viewProjection);
            mScene.drawPillar(mTowers, place);
        }
    }

    bool drawEvent(const std::string& event) override {
        const std::pair<const char*, GLuint> shown[] = {
            {"heroes", mHeroList}, {"battle", mHud}, {"masked", mHud}, {"result", mResultTitle}};
        for (const auto& [name, texture] : shown) {
            if (event == name) {
                mUnits->bind(UNIT_NOISE, texture);
                drawOverlays({60});
                return true;
            }
        }
        return event == "loading";
    }

private:
    static GLuint makeIcon(const char* label) { return makeTexture(label, GL_RGBA8, {64, 64}, 1, GL_LINEAR); }

    void loadBattle() {
        glDeleteTextures(static_cast<GLsizei>(mBattleTextures.size()), mBattleTextures.data());
        mBattleTextures.clear();
        const auto keep = [&](GLuint texture) {
            mBattleTextures.push_back(texture);
            return texture;
        };
        mScene.setMaterials({keep(makeMaterial("hero_body_d")), keep(makeMaterial("scene_tower_d")),
                             keep(makeMaterial("scene_ground_d")), keep(makeMaterial("scene_sky")),
                             keep(makeMaterial("fx_water"))});
        mScene.renewColour("SGame_Main_color_0", mIsMultisampled);
        mHud = keep(makeIcon("battle_hud"));
        keep(makeIcon("pvp_5_small"));
    }

    /** All that is behind the interface where no scene is. */
    void drawSky() {
        mScene.bindWindow(mUi.window());
        mScene.drawBackdrop(mEmptySky);
    }

    /** Draws with the clear program and everything masked, as the engine clears where a clear would cost more. */
    void clearByProgram() {
        mClear.use();
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        mScene.drawFullScreen();
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    }

    const bool mIsMultisampled;
    const Program mEmptySky;
    const Program mTowers;
    const Program mClear;
    const GLuint mLobbyBanner;
    const GLuint mStage;
    const GLuint mHeroList;
    const GLuint mSkinPreview;
    const GLuint mResultTitle;
    GLuint mHud = 0;
    std::vector<GLuint> mBattleTextures;
};

} // namespace

std::unique_ptr<Game> makeSGame(const Options& options) { return std::make_unique<SGame>(options); }

} // namespace sample
