#include "base/FsrConstants.h"

namespace android::orvel {

std::array<float, 16> fsrEasuConstants(int inputWidth, int inputHeight, int outputWidth, int outputHeight) {
    // Ratios in single and reciprocals in double precision: the games' own constants are recognised by comparison.
    const float sx = static_cast<float>(inputWidth) / static_cast<float>(outputWidth);
    const float sy = static_cast<float>(inputHeight) / static_cast<float>(outputHeight);
    const auto px = static_cast<float>(1.0 / inputWidth);
    const auto py = static_cast<float>(1.0 / inputHeight);
    // Twice and four times a reciprocal are exact: powers of two do not round.
    return {sx, sy, 0.5f * sx - 0.5f, 0.5f * sy - 0.5f, px, py, px, -py, -px, 2.0f * py, px, 2.0f * py, 0.0f, 4.0f * py,
            sx, sy};
}

} // namespace android::orvel
