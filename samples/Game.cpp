#include "Game.h"

#include "games/Games.h"

namespace sample {

namespace {

struct Entry {
    const char* name;
    std::unique_ptr<Game> (*make)(const Options&);
};

constexpr Entry kGames[] = {{"yuanshen", makeYuanshen}, {"hkrpg", makeHkrpg}};

const Entry* findGame(const std::string& name) {
    for (const Entry& entry : kGames) {
        if (name == entry.name) {
            return &entry;
        }
    }
    return nullptr;
}

} // namespace

bool isGame(const std::string& name) { return findGame(name) != nullptr; }

std::unique_ptr<Game> makeGame(const Options& options) { return findGame(options.game)->make(options); }

Game::Game(const Options& options, std::unique_ptr<TextureUnits> units)
    : mUnits(std::move(units)),
      mScene(options.base, options.work, *mUnits),
      mUi(options.window, options.game),
      mRestoreAt(options.restoreAt),
      mCameraDesc(makeTexture("CameraDesc", GL_RGBA8, {64, 64}, 1, GL_LINEAR)) {}

void Game::drawFrame(int frame) {
    mScene.beginFrame(frame);
    mScene.drawOpaque();
    drawOwnScenery(frame);
    if (isReached(frame, mRestoreAt)) {
        mUnits->bind(UNIT_NOISE, mCameraDesc);
    }
    mScene.grabColour();
    mScene.drawWater();
    mScene.drawOutline();
    mScene.drawPost();
    mScene.copyToWindow(mUi.window());
    mUi.draw(frame);
    glActiveTexture(GL_TEXTURE0);
}

} // namespace sample
