#include "Game.h"

#include "Picture.h"
#include "games/Games.h"

namespace sample {

namespace {

struct Entry {
    const char* name;
    std::unique_ptr<Game> (*make)(const Options&);
};

constexpr Entry kGames[] = {{"yuanshen", makeYuanshen}, {"hkrpg", makeHkrpg}, {"harrypotter", makeHarryPotter},
                            {"sgame", makeSGame},       {"pubg", makePubg},   {"video", makeVideo}};

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
      mOptions(options),
      mOverlay(options.window),
      mCameraDesc(makeTexture("CameraDesc", GL_RGBA8, {64, 64}, 1, GL_LINEAR)) {}

void Game::drawFrame(int frame) {
    changeEvent(frame);
    mScene.beginFrame(frame);
    drawScene(frame);
    if (mOptions.fill) {
        fillWindow();
    }
    drawInterface(frame);
    if (!mEvent.empty() && !drawEvent(mEvent)) {
        fail("%s knows no event \"%s\"", mOptions.game.c_str(), mEvent.c_str());
    }
    glActiveTexture(GL_TEXTURE0);
}

void Game::drawScene(int frame) {
    mScene.drawOpaque();
    drawOwnScenery(frame);
    if (isReached(frame, mOptions.restoreAt)) {
        mUnits->bind(UNIT_NOISE, mCameraDesc);
    }
    mScene.grabColour();
    mScene.drawWater();
    mScene.drawOutline();
    mScene.drawPost();
    takeScreenshot(frame);
    mScene.copyToWindow(mUi.window());
}

void Game::fillWindow() const {
    const uint32_t colour = *mOptions.fill;
    const auto channel = [&](int shift) { return static_cast<float>(colour >> shift & 0xff) / 255; };
    glClearColor(channel(16), channel(8), channel(0), 1);
    glClear(GL_COLOR_BUFFER_BIT);
}

void Game::drawOverlays(std::initializer_list<int> indices) const {
    for (const int count : indices) {
        mOverlay.draw(count);
    }
}

void Game::changeEvent(int frame) {
    if (const auto event = mOptions.events.find(frame); event != mOptions.events.end()) {
        mEvent = event->second == "none" ? "" : event->second;
        beginEvent(mEvent);
    }
}

void Game::takeScreenshot(int frame) const {
    if (const auto shot = mOptions.screenshots.find(frame); shot != mOptions.screenshots.end()) {
        mScene.bindPicture();
        writePicture(shot->second, mOptions.base);
    }
}

} // namespace sample
