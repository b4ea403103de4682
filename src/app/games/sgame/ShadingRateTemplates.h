// What a rate image of the battle scene is filled with: rings around the screen's centre, and the minimap's corner.
#pragma once

#include <cstdint>

namespace android::orvel::app::module {

/** Size of a rate image, and where the minimap lies in it. */
struct TemplateShape {
    int32_t width; // texels
    int32_t height;
    float mapRectX; // the minimap's left edge, as a part of the width
    float mapRectY; // its side, as a part of the height; it reaches up to the last row
};

// Both write width * height rate codes, row 0 first. The minimap always gets the coarsest code.
void fillTwoRings(uint8_t* texels, const TemplateShape& shape, uint8_t inner, uint8_t outer);
void fillThreeRings(uint8_t* texels, const TemplateShape& shape, uint8_t inner, uint8_t middle, uint8_t outer);

} // namespace android::orvel::app::module
