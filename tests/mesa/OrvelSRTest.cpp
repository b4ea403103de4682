#include "legacy/OrvelSR.h"

#include "FsrReference.h"
#include "legacy/OrvelSRShaders.h"

#include <gmock/gmock.h>
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

Picture sharpened(const Picture& input) {
    const ShaderPass rcas(kFsrVertexShader, kRcasShader, input.width, input.height);
    glUniform4f(rcas.uniform("_RCASParameters"), 0.5f, 0.70711f, 0, 0);
    glUniform2ui(rcas.uniform("_OutputSize"), GLuint(input.width), GLuint(input.height));
    rcas.draw(MesaContext::makeTexture(input));
    return MesaContext::readTexture(rcas.target(), input.width, input.height);
}

Picture mirrored(const Picture& picture) {
    Picture mirror(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            mirror.at(x, y) = picture.at(picture.width - 1 - x, picture.height - 1 - y);
        }
    }
    return mirror;
}

} // namespace

// A threshold of the filter may fall to either side by rounding: a few pixels may differ.
constexpr size_t kFew = 8; // seen: one; without a clamp at an edge: 15

// Catches any slip in either pass, passes in the wrong order, one without its input, constants of other sizes, a
// picture that is shifted, 0 / 0 in black and white fields. The second pass enlarges what the first one rounds, by
// little more than two.
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

// Catches an edge that is not clamped, a reciprocal that is too rough (flat white gets grey), a limit of another
// channel or neighbour, and one side that is taken for another.
TEST(OrvelSR, SharpensAsTheReferenceDoes) {
    const MesaContext context;
    const Picture input = testPicture(kInputWidth, kInputHeight);
    const Picture result = sharpened(input);
    EXPECT_LE(result.differenceTo(rcasReference(input)), 1);
    EXPECT_LE(mirrored(sharpened(mirrored(input))).differenceTo(result), 1);
    Picture greys(256 * 3, 3); // a field of each grey, three pixels wide
    for (size_t i = 0; i < greys.pixels.size(); ++i) {
        const auto grey = static_cast<uint8_t>(i % 768 / 3);
        greys.pixels[i] = {grey, grey, grey, 255};
    }
    const Picture flat = sharpened(greys);
    for (int grey = 0; grey < 256; ++grey) {
        EXPECT_THAT(flat.at(grey * 3 + 1, 1)[0], testing::AnyOf(grey, grey - 1));
    }
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
