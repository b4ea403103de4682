// Yuanshen binds every texture anew. One of its programs draws the clouds of a kind of scene whose resolution had
// better stay as it is; the program is known by its label. Its boss fights, teleports and its launch each begin with a
// sequence of draws that nothing else in the game has.
#include "Games.h"

#include "Shaders.h"

namespace sample {

namespace {

class Yuanshen : public Game {
public:
    explicit Yuanshen(const Options& options)
        : Game(options, std::make_unique<TextureUnits>()),
          mIllegalProgramAt(options.illegalProgramAt),
          mClouds("Dynamic Sky/Cube Ground Cloud", shaders::fullScreen(), shaders::clouds()),
          mBossFace(makeTexture("Boss Face", GL_RGBA8, {1024, 1024}, 1, GL_LINEAR)),
          mBossMask(makeTexture("Boss Mask", GL_RGBA8, {4, 4}, 1, GL_LINEAR)) {}

protected:
    void drawOwnScenery(int frame) override {
        if (isReached(frame, mIllegalProgramAt)) {
            mScene.drawBackdrop(mClouds);
        }
    }

    bool drawEvent(const std::string& event) override {
        if (event == "boss") {
            for (const GLuint texture : {mBossFace, mBossMask, mBossMask}) {
                mUnits->bind(UNIT_NOISE, texture);
            }
            drawOverlays({162, 54, 54, 6});
        } else if (event == "teleport") {
            glClear(GL_DEPTH_BUFFER_BIT);
            drawOverlays({6, 108, 30, 6, 6, 6, 420});
        } else if (event == "launch") {
            glClear(GL_DEPTH_BUFFER_BIT);
            drawOverlays({6, 60});
            for (int i = 0; i < 15; ++i) {
                drawOverlays({6});
            }
            drawOverlays({420});
        } else {
            return false;
        }
        return true;
    }

private:
    const int mIllegalProgramAt;
    const Program mClouds;
    const GLuint mBossFace;
    const GLuint mBossMask;
};

} // namespace

std::unique_ptr<Game> makeYuanshen(const Options& options) { return std::make_unique<Yuanshen>(options); }

} // namespace sample
