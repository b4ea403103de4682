#include "legacy/OrvelSR.h"

#include "FsrReference.h"
#include "base/FsrConstants.h"
#include "legacy/OrvelSRShaders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace android::orvel;

namespace {

constexpr int kInputWidth = 120;
constexpr int kInputHeight = 80;
constexpr int kOutputWidth = 180;
constexpr int kOutputHeight = 120;

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

Picture mirrored(const Picture& picture, bool acrossX) {
    Picture result(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            result.at(x, y) = acrossX ? picture.at(picture.width - 1 - x, y) : picture.at(x, picture.height - 1 - y);
        }
    }
    return result;
}

Picture upscaled(OrvelSR& sr, const Picture& input, int width, int height) {
    const GLuint texture = MesaContext::makeTexture(input);
    const GLuint result = sr.fsr(texture, input.width, input.height, width, height);
    return MesaContext::readTexture(result, width, height);
}

} // namespace

/** What the upscaling pass alone makes of a picture. */
Picture easu(const Picture& input, int width, int height) {
    const GLuint texture = MesaContext::makeTexture(input);
    const ShaderPass pass(kFsrVertexShader, kEasuShader, width, height);
    const auto constants = fsrEasuConstants(input.width, input.height, width, height);
    glUniform4fv(pass.uniform("_EASUParameters"), 4, constants.data());
    glUniform2ui(pass.uniform("_OutputSize"), static_cast<GLuint>(width), static_cast<GLuint>(height));
    pass.draw(texture);
    return MesaContext::readTexture(pass.target(), width, height);
}

// A threshold of the filter may fall to either side by rounding: a few pixels may differ.
constexpr size_t kFew = 8;

// Catches any slip in the upscaling pass, and a picture that is shifted.
TEST(FsrShaders, EasuAgreesWithDoublePrecision) {
    const MesaContext context;
    const Picture input = testPicture(kInputWidth, kInputHeight);
    for (const auto& [width, height] :
         {std::pair{kOutputWidth, kOutputHeight}, {201, 123}, {180, 300}, {kInputWidth, kInputHeight}}) {
        SCOPED_TRACE(testing::Message() << width << 'x' << height);
        EXPECT_LE(easu(input, width, height).countDifferences(easuReference(input, width, height), 1), kFew);
    }
    // Half as large again: no output pixel lies on an input texel, where the four nearest ones are a matter of choice.
    const Picture drawn = easu(input, kOutputWidth, kOutputHeight);
    for (const bool acrossX : {true, false}) {
        const Picture other = easu(mirrored(input, acrossX), kOutputWidth, kOutputHeight);
        EXPECT_LE(mirrored(other, acrossX).countDifferences(drawn, 1), kFew);
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Catches any slip in the sharpening pass, 0 / 0 in black and white fields, and a reciprocal without its second step.
TEST(FsrShaders, RcasAgreesWithDoublePrecision) {
    const MesaContext context;
    const Picture input = testPicture(kOutputWidth, kOutputHeight);
    const ShaderPass pass(kFsrVertexShader, kRcasShader, kOutputWidth, kOutputHeight);
    glUniform4f(pass.uniform("_RCASParameters"), 0.5F, 0.70711F, 0, 0);
    glUniform2ui(pass.uniform("_OutputSize"), kOutputWidth, kOutputHeight);
    const auto rcas = [&](const Picture& picture) {
        pass.draw(MesaContext::makeTexture(picture));
        return MesaContext::readTexture(pass.target(), kOutputWidth, kOutputHeight);
    };
    const Picture drawn = rcas(input);
    EXPECT_LE(drawn.differenceTo(rcasReference(input)), 1);
    EXPECT_GT(drawn.differenceTo(input), 10); // and it sharpens
    for (const bool acrossX : {true, false}) {
        EXPECT_LE(mirrored(rcas(mirrored(input, acrossX)), acrossX).differenceTo(drawn), 1);
    }
}

// Catches passes in the wrong order, one without its input, and constants of other sizes. The second pass enlarges what
// the first one rounds, by little more than two.
TEST(OrvelSR, UpscalesThenSharpens) {
    const MesaContext context;
    OrvelSR sr;
    const Picture input = testPicture(kInputWidth, kInputHeight);
    const Picture result = upscaled(sr, input, kOutputWidth, kOutputHeight);
    EXPECT_LE(result.countDifferences(rcasReference(easuReference(input, kOutputWidth, kOutputHeight)), 3), 5 * kFew);
    for (const bool acrossX : {true, false}) {
        const Picture other = upscaled(sr, mirrored(input, acrossX), kOutputWidth, kOutputHeight);
        EXPECT_LE(mirrored(other, acrossX).countDifferences(result, 3), 5 * kFew);
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Catches NaN and drift in flat regions: a colour comes out as it is, or one step darker.
TEST(OrvelSR, KeepsFlatColours) {
    const MesaContext context;
    OrvelSR sr;
    for (const uint8_t level : {0, 1, 60, 128, 254, 255}) {
        Picture flat(16, 16);
        std::fill(flat.pixels.begin(), flat.pixels.end(), Picture::Pixel{level, level, level, 255});
        for (const Picture::Pixel& pixel : upscaled(sr, flat, 24, 24).pixels) {
            ASSERT_LE(pixel[1], level);
            ASSERT_GE(pixel[1] + 1, level);
            ASSERT_EQ(pixel[3], 255);
        }
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
