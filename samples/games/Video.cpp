// A video player: the scene is what it shows. It has no habits of its own.
#include "Games.h"

namespace sample {

std::unique_ptr<Game> makeVideo(const Options& options) {
    return std::make_unique<Game>(options, std::make_unique<TextureUnits>());
}

} // namespace sample
