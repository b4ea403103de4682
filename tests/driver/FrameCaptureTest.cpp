// Repeated frames and screenshots on Mesa: pixels, and what the game's context is left with.
#include "GameProcess.h"

#include <gmock/gmock.h>

#include <vector>

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr char kVerbose[] = "vendor.orvel.debug=true\n";

/** Clears a rectangle; the colours that the tests use are exact in eight bits. */
void fill(int x, int y, int width, int height, float red, float green) {
    glEnable(GL_SCISSOR_TEST);
    glScissor(x, y, width, height);
    glClearColor(red, green, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
}

std::vector<uint32_t> readColors(int width, int height) {
    std::vector<uint32_t> texels(static_cast<size_t>(width * height), 0x12345678);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    return texels;
}

GLuint bound(GLenum binding) {
    GLint name = -1;
    glGetIntegerv(binding, &name);
    return static_cast<GLuint>(name);
}

size_t count(const std::string& text, const std::string& part) {
    size_t found = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++found;
    }
    return found;
}

constexpr uint32_t kRed = 0xFF0000FF;
constexpr uint32_t kYellow = 0xFF00FFFF;

} // namespace

// Catches a copy that lacks pixels or is upside down, bindings other than those that the repetition is known to leave,
// a frame that is repeated within the interval, and an error of ours that the game finds.
TEST(RepeatedFrame, HoldsThePixelsOfTheFirst) {
    GameProcess game("com.miHoYo.Yuanshen", R"({"configs":{"dfi_interval":"60000"}})");
    game.root().write("/properties", kVerbose);
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    fill(0, 0, 64, 64, 1, 0);
    fill(10, 3, 20, 5, 1, 1);
    const auto drawn = readColors(64, 64);
    ASSERT_EQ(drawn[3 * 64 + 10], kYellow);
    ASSERT_TRUE(context.swap());
    EXPECT_EQ(bound(GL_DRAW_FRAMEBUFFER_BINDING), 0u);
    EXPECT_NE(bound(GL_READ_FRAMEBUFFER_BINDING), 0u);
    EXPECT_EQ(bound(GL_TEXTURE_BINDING_2D), texture);
    EXPECT_EQ(readColors(64, 64), drawn) << "of the copy, which stays bound to be read";
    fill(0, 0, 64, 64, 0, 0);
    ASSERT_TRUE(context.swap());
    EXPECT_EQ(readColors(64, 64), drawn) << "within the interval nothing is kept";
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(count(game.log(), "libOrvel: DFI\n"), 1u) << game.log();
}

// Catches a screenshot of another size than was asked for, one that is not scaled by the known formula, and bindings
// that stay ours. The formula asks for 53 x 53 texels of 40 x 40: what lies beyond stays as it was.
TEST(Screenshot, IsScaledFromTheRaisedSize) {
    GameProcess game("com.miHoYo.Yuanshen", R"({"configs":{"tex_size":"40x40","max_resolution":"30x30"}})");
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    GLuint textures[2] = {};
    glGenTextures(2, textures);
    glBindTexture(GL_TEXTURE_2D, textures[0]);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 30, 30);
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    ASSERT_EQ(width, 40);
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, textures[0], 0);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    fill(0, 0, 40, 40, 1, 0);
    fill(0, 0, 20, 40, 1, 1); // the left half
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    glBindTexture(GL_TEXTURE_2D, textures[1]);

    const auto screenshot = readColors(30, 30);
    EXPECT_THAT(game.log(),
                HasSubstr("processGameCapture, start: 0x0, size: 30x30->40x40, format: 1908, type: 1401, "));
    for (const int row : {0, 11, 21}) {
        const uint32_t* texels = &screenshot[static_cast<size_t>(row * 30)];
        EXPECT_EQ(texels[0], kYellow) << row;
        EXPECT_EQ(texels[10], kYellow) << row;
        EXPECT_EQ(texels[12], kRed) << row; // 20 of 53 texels are 11.3 of 30
        EXPECT_EQ(texels[21], kRed) << row;
        EXPECT_NE(texels[24], kRed) << row; // 40 of 53 are 22.6
        EXPECT_NE(texels[29], kRed) << row;
    }
    EXPECT_NE(screenshot[29 * 30], kYellow);
    EXPECT_EQ(bound(GL_DRAW_FRAMEBUFFER_BINDING), 0u);
    EXPECT_EQ(bound(GL_READ_FRAMEBUFFER_BINDING), framebuffer);
    EXPECT_EQ(bound(GL_TEXTURE_BINDING_2D), textures[1]);

    const auto whole = readColors(40, 40);
    EXPECT_EQ(whole[0], kYellow);
    EXPECT_EQ(whole[40 * 40 - 1], kRed);
    EXPECT_EQ(count(game.log(), "processGameCapture"), 1u) << "another size is the driver's to read";
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}
