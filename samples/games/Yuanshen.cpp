// Yuanshen binds every texture anew. One of its programs draws the clouds of a kind of scene whose resolution had better
// stay as it is; the program is known by its label.
#include "Games.h"

#include "Shaders.h"

namespace sample {

namespace {

class Yuanshen : public Game {
public:
    explicit Yuanshen(const Options& options)
        : Game(options, std::make_unique<TextureUnits>()),
          mIllegalProgramAt(options.illegalProgramAt),
          mClouds("Dynamic Sky/Cube Ground Cloud", shaders::fullScreen(), shaders::clouds()) {}

protected:
    void drawOwnScenery(int frame) override {
        if (isReached(frame, mIllegalProgramAt)) {
            mScene.drawBackdrop(mClouds);
        }
    }

private:
    const int mIllegalProgramAt;
    const Program mClouds;
};

} // namespace

std::unique_ptr<Game> makeYuanshen(const Options& options) { return std::make_unique<Yuanshen>(options); }

} // namespace sample
