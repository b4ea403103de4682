#include "base/FsrConstants.h"

namespace android::orvel {

std::array<float, 16> fsrEasuConstants(int inputWidth, int inputHeight, int outputWidth, int outputHeight) {
    const float sx = static_cast<float>(inputWidth) / static_cast<float>(outputWidth);
    const float sy = static_cast<float>(inputHeight) / static_cast<float>(outputHeight);
    const float px = 1.0f / static_cast<float>(inputWidth);
    const float py = 1.0f / static_cast<float>(inputHeight);
    // Twice and four times a reciprocal are exact: powers of two do not round.
    return {sx, sy, 0.5f * sx - 0.5f, 0.5f * sy - 0.5f, px, py, px, -py, -px, 2.0f * py, px, 2.0f * py, 0.0f, 4.0f * py,
            sx, sy};
}

} // namespace android::orvel
