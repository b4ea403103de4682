// Dynamic resolution on Mesa: what the render targets hold after a switch, and what the game's context is left with.
#include "GameProcess.h"

#include <GLES2/gl2ext.h>
#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <vector>

using testing::Each;

namespace {

// Each size is a third of the one before: the nearest texel of a copied one is the middle of nine, beyond doubt.
constexpr int kBase = 90, kSmall = 30, kTiny = 10; // widths; heights are half of them, rounded down
constexpr char kConfiguration[] = R"({"configs":{"drr_enable":"1","drr_base_size":"90x45","drr_illegal_size":"33x44",)"
                                  R"("drr_available_size":"30x15;10x5"}})";

template <typename Texel>
using Picture = std::vector<Texel>;

template <typename Texel, typename Function>
Picture<Texel> picture(int width, Function texelAt) {
    Picture<Texel> texels;
    for (int i = 0; i < width * (width / 2); ++i) {
        texels.push_back(texelAt(i % width, i / width));
    }
    return texels;
}
/** At the base size each texel has a colour of its own; what a smaller copy of that holds. */
Picture<uint32_t> painted(int width) {
    const int step = kBase / width;
    return picture<uint32_t>(width, [step](int x, int y) {
        return 0xFF000000u + unsigned(x * step + step / 2 + ((y * step + step / 2) << 8));
    });
}
template <typename Texel>
Picture<Texel> leftThird(int width, Texel left, Texel rest) {
    return picture<Texel>(width, [=](int x, int) { return x < width / 3 ? left : rest; });
}
template <typename Texel>
Picture<Texel> read(int width, GLenum format, GLenum type) {
    Picture<Texel> texels(static_cast<size_t>(width * (width / 2)));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, width / 2, format, type, texels.data());
    return texels;
}
Picture<uint32_t> readColors(int width) { return read<uint32_t>(width, GL_RGBA, GL_UNSIGNED_BYTE); }

/** A texture of the base size, under a new name or the one given; it stays bound. */
GLuint makeTexture(GLenum format, GLuint texture = 0) {
    if (!texture) {
        glGenTextures(1, &texture);
    }
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexStorage2D(GL_TEXTURE_2D, 1, format, kBase, kBase / 2);
    return texture;
}
GLuint makeFramebuffer(GLuint color) {
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, color, 0);
    return framebuffer;
}
GLuint boundTexture() {
    GLint texture = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
    return static_cast<GLuint>(texture);
}
/** Width of what the game's name leads to; that stays bound. */
GLint widthOf(GLuint texture) {
    GLint width = 0;
    glBindTexture(GL_TEXTURE_2D, texture);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    return width;
}

class ShrinkingGame : public testing::Test {
protected:
    void start(const char* package = "com.miHoYo.Yuanshen") {
        mGame = std::make_unique<GameProcess>(package, kConfiguration);
        mContext = std::make_unique<Context>();
        ASSERT_TRUE(mContext->makeCurrent());
    }
    /** One frame, which ends on the window's framebuffer and lasts until the next look at the file. */
    void swap() {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(11));
        ASSERT_TRUE(mContext->swap());
    }
    void switchTo(int width) {
        mGame->root().write("/data/system/mcd/dr", "miHoYo " + std::to_string(width) + ' ' + std::to_string(width / 2));
        swap();
    }

    std::unique_ptr<GameProcess> mGame;
    std::unique_ptr<Context> mContext;
};

} // namespace

// Catches colours that are smoothed, shifted or lost on the way, a target that keeps its size, a second switch that
// copies from what the game drew before the first, and an error of ours that the game finds.
TEST_F(ShrinkingGame, ColorsFollowTheSwitches) {
    start();
    const GLuint color = makeTexture(GL_RGBA8);
    const GLuint framebuffer = makeFramebuffer(color);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, kBase, kBase / 2, GL_RGBA, GL_UNSIGNED_BYTE, painted(kBase).data());
    for (const int width : {kSmall, kTiny}) {
        switchTo(width);
        EXPECT_EQ(widthOf(color), width);
        EXPECT_NE(boundTexture(), color);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum(GL_FRAMEBUFFER_COMPLETE));
        EXPECT_TRUE(readColors(width) == painted(width));
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Catches depth or stencil that is not copied, that a refused read buffer keeps from being copied, or whose
// framebuffer is incomplete afterwards. The driver's refusal is known and stays for the game to read.
TEST_F(ShrinkingGame, DepthAndStencilFollowTheSwitches) {
    start();
    const GLuint color = makeTexture(GL_RGBA8);
    const GLuint framebuffers[] = {makeFramebuffer(color), makeFramebuffer(color)};
    const std::pair<GLenum, GLenum> others[] = {{GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24},
                                                {GL_STENCIL_ATTACHMENT, GL_STENCIL_INDEX8}};
    const auto clear = [](float depth, int stencil) {
        glClearDepthf(depth);
        glClearStencil(stencil);
        glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    };
    for (int i = 0; i < 2; ++i) {
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffers[i]);
        glFramebufferTexture2D(GL_FRAMEBUFFER, others[i].first, GL_TEXTURE_2D, makeTexture(others[i].second), 0);
        clear(1.0f, 1);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, kBase / 3, kBase);
        clear(0.0f, 2);
        glDisable(GL_SCISSOR_TEST);
    }
    ASSERT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    for (const int width : {kSmall, kTiny}) {
        switchTo(width);
        EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM));
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffers[0]);
        EXPECT_TRUE(read<GLuint>(width, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT) == leftThird(width, 0u, ~0u)) << width;
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffers[1]);
        EXPECT_TRUE(read<GLubyte>(width, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE) == leftThird<GLubyte>(width, 2, 1))
            << width;
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    }
}

// Catches a name that still leads to its replacement after it was deleted, a texture made after a switch that has
// another size than what it is attached beside, and one that the next switch misses.
TEST_F(ShrinkingGame, DeletedNamesStartAfresh) {
    start();
    const GLuint color = makeTexture(GL_RGBA8);
    const GLuint oldFramebuffer = makeFramebuffer(color);
    switchTo(kSmall);
    glDeleteFramebuffers(1, &oldFramebuffer);
    glDeleteTextures(1, &color);
    makeTexture(GL_RGBA8, color);
    EXPECT_EQ(boundTexture(), color);
    EXPECT_EQ(widthOf(color), kSmall);
    const GLuint framebuffer = makeFramebuffer(color);
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    switchTo(kTiny);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    EXPECT_EQ(widthOf(color), kTiny);
    EXPECT_THAT(readColors(kTiny), Each(0xFFFFFFFFu));
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Catches a restore trigger that goes unseen or is left again, and an illegal size that does not end substitution.
TEST_F(ShrinkingGame, GoesBackForGood) {
    start();
    const GLuint color = makeTexture(GL_RGBA8);
    makeFramebuffer(color);
    switchTo(kSmall);
    GLuint trigger = 0;
    glGenTextures(1, &trigger);
    glBindTexture(GL_TEXTURE_2D, trigger); // a name has a label once it has been bound
    const auto label = reinterpret_cast<PFNGLLABELOBJECTEXTPROC>(eglGetProcAddress("glLabelObjectEXT"));
    label(GL_TEXTURE, trigger, 0, "CameraDesc");
    glBindTexture(GL_TEXTURE_2D, trigger);
    swap();
    EXPECT_EQ(widthOf(color), kBase);
    EXPECT_NE(boundTexture(), color);
    switchTo(kTiny);
    EXPECT_EQ(widthOf(color), kBase);
    glBindTexture(GL_TEXTURE_2D, trigger);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_R8, 33, 44);
    glBindTexture(GL_TEXTURE_2D, color);
    EXPECT_EQ(boundTexture(), color);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Catches a game whose units keep what was bound before a switch although it never binds again; only one game does so.
TEST_F(ShrinkingGame, HkrpgsUnitsFollowWhenTheyBecomeActive) {
    start("com.miHoYo.hkrpg");
    const GLuint color = makeTexture(GL_RGBA8); // on unit 0
    makeFramebuffer(color);
    GLuint before = color;
    for (const int width : {kSmall, kTiny}) {
        glActiveTexture(GL_TEXTURE1);
        switchTo(width);
        glActiveTexture(GL_TEXTURE0);
        const GLuint replacement = boundTexture();
        EXPECT_NE(replacement, before);
        EXPECT_EQ(widthOf(color), width);
        EXPECT_EQ(boundTexture(), replacement);
        before = replacement;
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}
