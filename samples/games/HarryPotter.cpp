// Harry Potter's teleport shows in the draws before it throws a depth buffer away.
#include "Games.h"

namespace sample {

namespace {

class HarryPotter : public Game {
public:
    explicit HarryPotter(const Options& options) : Game(options, std::make_unique<TextureUnits>()) {}

protected:
    bool drawEvent(const std::string& event) override {
        if (event != "teleport") {
            return false;
        }
        drawOverlays({6, 6, 6, 12, 60});
        const GLenum depth = GL_DEPTH;
        glInvalidateFramebuffer(GL_FRAMEBUFFER, 1, &depth);
        return true;
    }
};

} // namespace

std::unique_ptr<Game> makeHarryPotter(const Options& options) { return std::make_unique<HarryPotter>(options); }

} // namespace sample
