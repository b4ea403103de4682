// Shading rates as numbers, coded as in the texels of a rate image: the pixels that one fragment covers are
// 2^(code >> 2) wide and 2^(code & 3) high.
#pragma once

#include "Entries.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

namespace android::rig {

using RateCode = uint8_t;
constexpr RateCode kRate1x1 = 0;
constexpr int kRateCodes = 16;
constexpr int kMostLog2 = 2; // 4 pixels

constexpr RateCode rateCode(int log2Width, int log2Height) {
    return static_cast<RateCode>(log2Width << 2 | log2Height);
}
constexpr int log2Width(RateCode code) { return std::min(code >> 2 & 3, kMostLog2); }
constexpr int log2Height(RateCode code) { return std::min(code & 3, kMostLog2); }

/** @return the code of a GL_SHADING_RATE_..._PIXELS_EXT; nothing for any other value */
constexpr std::optional<RateCode> rateCodeOf(GLenum rate) {
    constexpr RateCode kCodes[] = {
        rateCode(0, 0), rateCode(0, 1), rateCode(1, 0), rateCode(1, 1), rateCode(0, 2), // 1x1 1x2 2x1 2x2 1x4
        rateCode(2, 0), rateCode(2, 1), rateCode(1, 2), rateCode(2, 2),                 // 4x1 4x2 2x4 4x4
    };
    if (rate < GL_SHADING_RATE_1X1_PIXELS_EXT || rate > GL_SHADING_RATE_4X4_PIXELS_EXT) {
        return std::nullopt;
    }
    return kCodes[rate - GL_SHADING_RATE_1X1_PIXELS_EXT];
}

/** Combines two rates as GL_EXT_fragment_shading_rate does. */
constexpr RateCode combine(GLenum op, RateCode a, RateCode b) {
    switch (op) {
    case GL_FRAGMENT_SHADING_RATE_COMBINER_OP_REPLACE_EXT:
        return b;
    case GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MIN_EXT:
        return rateCode(std::min(log2Width(a), log2Width(b)), std::min(log2Height(a), log2Height(b)));
    case GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MAX_EXT:
        return rateCode(std::max(log2Width(a), log2Width(b)), std::max(log2Height(a), log2Height(b)));
    case GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MUL_EXT:
        return rateCode(std::min(log2Width(a) + log2Width(b), kMostLog2),
                        std::min(log2Height(a) + log2Height(b), kMostLog2));
    default: // keep
        return a;
    }
}

/** @return "2x4" */
inline std::string textOf(RateCode code) {
    return std::to_string(1 << log2Width(code)) + 'x' + std::to_string(1 << log2Height(code));
}

} // namespace android::rig
