#include "app/games/sgame/ShadingRateTemplates.h"

#include "app/games/sgame/ShadingRateCodes.h"

#include <array>

namespace android::orvel::app::module {

namespace {

/** The texels around the centre that get one code; an ellipse without extent holds none. */
struct Ring {
    float semiAxisX;
    float semiAxisY;
    uint8_t code;

    bool Holds(float x, float y) const {
        if (semiAxisX == 0 || semiAxisY == 0) {
            return false;
        }
        return x * x / (semiAxisX * semiAxisX) + y * y / (semiAxisY * semiAxisY) <= 1;
    }
};

/** @param rings inner ones first; what lies in none of them gets outside */
template <size_t Rings>
void fill(uint8_t* texels, const TemplateShape& shape, const std::array<Ring, Rings>& rings, uint8_t outside) {
    const auto width = static_cast<float>(shape.width);
    const auto height = static_cast<float>(shape.height);
    const float mapLeft = shape.mapRectX * width;
    const float mapSide = shape.mapRectY * height;
    const auto codeAt = [&](int32_t column, int32_t row) {
        const auto x = static_cast<float>(column);
        const auto y = static_cast<float>(row);
        if (mapLeft < x && x <= mapLeft + mapSide && height - mapSide < y) {
            return kCoarsestImageCode;
        }
        for (const Ring& ring : rings) {
            if (ring.Holds(x - static_cast<float>(shape.width / 2), y - static_cast<float>(shape.height / 2))) {
                return ring.code;
            }
        }
        return outside;
    };
    for (int32_t row = 0; row < shape.height; ++row) {
        for (int32_t column = 0; column < shape.width; ++column) {
            *texels++ = codeAt(column, row);
        }
    }
}

} // namespace

void fillTwoRings(uint8_t* texels, const TemplateShape& shape, uint8_t inner, uint8_t outer) {
    const auto x = static_cast<float>(shape.width / 2);
    const auto y = static_cast<float>(shape.height / 2);
    fill<1>(texels, shape, {{{x / 2, 0.75f * y, inner}}}, outer);
}

void fillThreeRings(uint8_t* texels, const TemplateShape& shape, uint8_t inner, uint8_t middle, uint8_t outer) {
    const auto x = static_cast<float>(shape.width / 2);
    const auto y = static_cast<float>(shape.height / 2);
    fill<2>(texels, shape, {{{x / 3, y / 3 + y / 4, inner}, {2 * x / 3, y / 4 + 2 * y / 3, middle}}}, outer);
}

} // namespace android::orvel::app::module
