#include "legacy/OrvelSR.h"

#include "FsrReference.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace android::orvel;

namespace {

constexpr int kInputWidth = 120;
constexpr int kInputHeight = 80;

/** Edges of all directions, thin lines, noise, and fields of plain black and white. */
Picture testPicture(int width, int height) {
    Picture picture(width, height);
    uint32_t random = 7;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            random = random * 1664525 + 1013904223;
            const int field = x * 6 / width;
            uint8_t level = 0;
            switch (field) {
            case 0:
                level = static_cast<uint8_t>(random >> 24);
                break; // noise
            case 1:
                level = (x + 2 * y) % 23 < 9 ? 220 : 35;
                break; // edges
            case 2:
                level = (x / 3 + y / 3) % 2 == 0 ? 255 : 0;
                break; // squares
            case 3:
                level = std::hypot(x - width * 0.58, y - height * 0.5) < 14 ? 240 : 20;
                break;
            case 4:
                level = y % 7 == 0 ? 255 : 128;
                break; // thin lines
            default:
                level = y < height / 2 ? 255 : 0;
                break;
            }
            picture.at(x, y) = {level, static_cast<uint8_t>(level * 3 / 4), static_cast<uint8_t>(2 * x), 255};
        }
    }
    return picture;
}

} // namespace

// A threshold of the filter may fall to either side by rounding: a few pixels may differ.
constexpr size_t kFew = 40;

// Catches any slip in either pass, passes in the wrong order, one without its input, constants of other sizes, a picture
// that is shifted, 0 / 0 in black and white fields. The second pass enlarges what the first one rounds, by little more
// than two.
TEST(OrvelSR, UpscalesThenSharpens) {
    const MesaContext context;
    const Picture input = testPicture(kInputWidth, kInputHeight);
    for (const auto& [width, height] : {std::pair{180, 120}, {201, 123}, {180, 300}, {kInputWidth, kInputHeight}}) {
        SCOPED_TRACE(testing::Message() << width << 'x' << height);
        OrvelSR sr;
        const GLuint drawn = sr.fsr(MesaContext::makeTexture(input), kInputWidth, kInputHeight, width, height);
        const Picture result = MesaContext::readTexture(drawn, width, height);
        EXPECT_LE(result.countDifferences(rcasReference(easuReference(input, width, height)), 3), kFew);
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Catches objects that are made anew, and constants that follow later sizes.
TEST(OrvelSR, MakesItsObjectsOnceAndKeepsTheFirstConstants) {
    const MesaContext context;
    OrvelSR sr;
    const GLuint texture = MesaContext::makeTexture(testPicture(16, 16));
    const GLuint first = sr.fsr(texture, 16, 16, 32, 32);
    const Picture picture = MesaContext::readTexture(first, 32, 32);
    EXPECT_EQ(sr.fsr(texture, 8, 8, 32, 32), first);
    EXPECT_EQ(MesaContext::readTexture(first, 32, 32).differenceTo(picture), 0);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}
