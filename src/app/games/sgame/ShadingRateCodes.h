// How the configuration names shading rates: two digits, width and height of the block of pixels that is shaded at
// once.
#pragma once

#include "app/VRSComponent.h"

#include <cstdint>

namespace android::orvel::app::module {

struct ShadingRateCode {
    int32_t code;
    GLenum drawRate;   // as glShadingRateEXT and glShadingRateQCOM take it
    uint8_t imageCode; // as a texel of a rate image takes it
};

// Deliberate: by the extension's encoding the image codes of 12 and 42 have width and height exchanged, and the one of
// an unknown code is no full rate but 1x4.
constexpr ShadingRateCode kShadingRateCodes[] = {
    {12, GL_SHADING_RATE_1X2_PIXELS_EXT, 4},
    {22, GL_SHADING_RATE_2X2_PIXELS_EXT, 5},
    {42, GL_SHADING_RATE_4X2_PIXELS_EXT, 6},
    {44, GL_SHADING_RATE_4X4_PIXELS_EXT, 10},
};
constexpr ShadingRateCode kOtherShadingRate = {0, GL_SHADING_RATE_1X1_PIXELS_EXT, 2};
constexpr uint8_t kCoarsestImageCode = 10;

constexpr ShadingRateCode shadingRateOf(int32_t code) {
    for (const ShadingRateCode& known : kShadingRateCodes) {
        if (known.code == code) {
            return known;
        }
    }
    return kOtherShadingRate;
}

} // namespace android::orvel::app::module
