#include "legacy/OrvelDRR.h"

#include "legacy/DynamicResolutionGame.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>

using namespace android;
using namespace std::string_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

void append(Calls& calls, const Calls& more) { calls.insert(calls.end(), more.begin(), more.end()); }

/** Making and filling one replacement; names of temporary framebuffers start at readName. */
Calls replaced(GLuint from, TEX_SIZE fromSize, GLuint to, TEX_SIZE size, GLenum format, GLint filter, GLenum point,
               GLbitfield mask, GLuint readName) {
    const auto parameter = [](GLenum pname, GLint value) {
        return call("glTexParameteri", GL_TEXTURE_2D, pname, value);
    };
    return {"glGenTextures(1, *)",
            call("glBindTexture", GL_TEXTURE_2D, to),
            parameter(GL_TEXTURE_BASE_LEVEL, 0),
            parameter(GL_TEXTURE_MAX_LEVEL, 0),
            call("glTexStorage2D", GL_TEXTURE_2D, 1, format, size.width, size.height),
            parameter(GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE),
            parameter(GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE),
            parameter(GL_TEXTURE_WRAP_R, GL_CLAMP_TO_EDGE),
            parameter(GL_TEXTURE_MAX_ANISOTROPY_EXT, 1),
            parameter(GL_TEXTURE_SRGB_DECODE_EXT, GL_DECODE_EXT),
            parameter(GL_TEXTURE_MIN_FILTER, filter),
            parameter(GL_TEXTURE_MAG_FILTER, filter),
            call("glBindTexture", GL_TEXTURE_2D, 0),
            "glGenFramebuffers(1, *)",
            call("glBindFramebuffer", GL_READ_FRAMEBUFFER, readName),
            call("glFramebufferTexture2D", GL_READ_FRAMEBUFFER, point, GL_TEXTURE_2D, from, 0),
            call("glReadBuffer", point),
            "glGenFramebuffers(1, *)",
            call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, readName + 1),
            "glDrawBuffers(1, *)",
            call("glFramebufferTexture2D", GL_DRAW_FRAMEBUFFER, point, GL_TEXTURE_2D, to, 0),
            call("glBlitFramebuffer", 0, 0, fromSize.width, fromSize.height, 0, 0, size.width, size.height, mask,
                 GL_NEAREST),
            call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, 0),
            call("glBindFramebuffer", GL_READ_FRAMEBUFFER, 0),
            "glDeleteFramebuffers(1, *)",
            "glDeleteFramebuffers(1, *)"};
}

Calls attached(GLuint framebuffer, GLenum point, GLuint texture) {
    return {call("glBindFramebuffer", GL_FRAMEBUFFER, framebuffer),
            call("glFramebufferTexture2D", GL_FRAMEBUFFER, point, GL_TEXTURE_2D, texture, 0)};
}

} // namespace

// ---- the switch ---------------------------------------------------------------------------------------

// Catches any call of a switch that is missing, superfluous, out of order or has a wrong argument: a shared texture
// copied twice, a second switch that copies from the game's texture, a colour copied at its own attachment point.
TEST_F(DynamicResolution, SwitchMakesExactlyTheseCalls) {
    start();
    allocate(7);
    allocate(8, GL_DEPTH24_STENCIL8);
    attach(4, GL_COLOR_ATTACHMENT0, 7);
    attach(4, GL_DEPTH_ATTACHMENT, 8);
    attach(3, GL_STENCIL_ATTACHMENT, 8);
    attach(3, GL_COLOR_ATTACHMENT2, 7);
    mGame.glBindFramebuffer(GL_READ_FRAMEBUFFER, 5); // what was bound last is what is bound for drawing afterwards
    struct Switch {
        TEX_SIZE from, to;
        GLuint oldColor, oldStencil, newColor, newStencil, temporary;
    };
    for (const Switch& s : {Switch{kBase, kSmall, 7, 8, 100, 101, 200}, {kSmall, kTiny, 100, 101, 102, 103, 204}}) {
        mDriver->forget();
        switchTo(s.to);
        Calls expected = {call("glClearColor", 0.f, 0.f, 0.f, 0.f), call("glClear", GL_COLOR_BUFFER_BIT)};
        append(expected, replaced(s.oldColor, s.from, s.newColor, s.to, GL_RGBA8, GL_LINEAR, GL_COLOR_ATTACHMENT0,
                                  GL_COLOR_BUFFER_BIT, s.temporary));
        append(expected, attached(3, GL_COLOR_ATTACHMENT2, s.newColor));
        append(expected, replaced(s.oldStencil, s.from, s.newStencil, s.to, GL_DEPTH24_STENCIL8, GL_NEAREST,
                                  GL_STENCIL_ATTACHMENT, GL_STENCIL_BUFFER_BIT, s.temporary + 2));
        append(expected, attached(3, GL_STENCIL_ATTACHMENT, s.newStencil));
        append(expected, attached(4, GL_COLOR_ATTACHMENT0, s.newColor));
        append(expected, attached(4, GL_DEPTH_ATTACHMENT, s.newStencil));
        expected.push_back(call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, 5));
        EXPECT_EQ(glCalls(), expected);
        EXPECT_EQ(applied(), s.to);
    }
    EXPECT_THAT(mDrawBuffers,
                ElementsAre(GL_COLOR_ATTACHMENT0, GL_STENCIL_ATTACHMENT, GL_COLOR_ATTACHMENT0, GL_STENCIL_ATTACHMENT));
    EXPECT_THAT(mGone, ElementsAre(200, 201, 202, 203, 204, 205, 206, 207));
}

// Catches a filter that smooths what holds no colour, or that does not smooth what does.
TEST_F(DynamicResolution, OnlyThreeFormatsAreFilteredLinearly) {
    start();
    const GLenum formats[] = {GL_RGBA8, GL_R8, GL_R11F_G11F_B10F, GL_SRGB8_ALPHA8, GL_RGBA16F, GL_DEPTH_COMPONENT24};
    for (GLuint i = 0; i < std::size(formats); ++i) {
        allocate(i + 1, formats[i]);
        attach(i + 1, GL_COLOR_ATTACHMENT0, i + 1);
    }
    switchTo(kSmall);
    Calls filters = mDriver->calls();
    const auto filter = [](GLint value) {
        return call("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, value);
    };
    const std::string linear = filter(GL_LINEAR);
    const std::string nearest = filter(GL_NEAREST);
    std::erase_if(filters, [&](const std::string& line) { return line != linear && line != nearest; });
    EXPECT_THAT(filters, ElementsAre(linear, linear, linear, nearest, nearest, nearest));
}

// Catches a changed text, value or order of the debug lines, which others read.
TEST_F(DynamicResolution, LogsEachStepWhenDebugging) {
    start("com.example.game", true);
    LogCapture log;
    allocate(7);
    attach(3, GL_COLOR_ATTACHMENT0, 7);
    allocate(8, GL_DEPTH_COMPONENT24);
    attach(3, GL_DEPTH_ATTACHMENT, 8);
    const GLuint deleted[] = {7};
    mGame.glDeleteTextures(1, deleted);
    switchTo(kSmall);
    const GLfloat screen[] = {1920, 1080, 1 + 1 / 1920.f, 1 + 1 / 1080.f};
    mGame.glUniform4fv(1, 1, screen);
    const GLuint framebuffer[] = {3};
    mGame.glDeleteFramebuffers(1, framebuffer);
    EXPECT_THAT(
        log.texts(ANDROID_LOG_DEBUG),
        ElementsAre(
            "OrvelDRR, record tex detail, tex: 7",
            "OrvelDRR, record framebuffer detail, framebuffer: 3, attach-texture: 7",
            "OrvelDRR, record tex detail, tex: 8",
            "OrvelDRR, record framebuffer detail, framebuffer: 3, attach-texture: 8",
            "OrvelDRR, deleteTextures, tex: 7 in mTexDetailMap, erase it", "OrvelDRR, DR: com.example.game : 1280x720",
            "OrvelDRR, updateDrConfig: 1280x720", "OrvelDRR, dr: 1280x720",
            "OrvelDRR mTargetWidth:1280, mTargetHeight:720, mPreTargetWidth:-1, mPreTargetHeight:-1",
            "OrvelDRR, traverse mFramebufferDetailMap, framebuffer: 3, color0: 7, color1: -1, color2: -1, "
            "depthStencil: 8",
            "OrvelDRR, check_tex_exist tex: 7 isn't in mTexDetailMap -------------",
            "OrvelDRR, genNewTex  mTexDetailMap[tex].oldWidth 1920, mTexDetailMap[tex].oldHeight 1080,"
            "mTargetWidth1280,mTargetHeight720",
            "OrvelDRR, genNewTex, tex: 8, newTex: 100", "OrvelDRR, mask is ~ GL_COLOR_BUFFER_BIT",
            "OrvelDRR, copyTex  1-2 mCurrentTexture 8, tex 8, newTex 100, mCurrentFramebuffer 3, mCurrentWidth-1, "
            "mCurrentHeight-1,mTargetWidth1280,mTargetHeight720,mTexDetailMap[tex].oldWidth 1920, "
            "mTexDetailMap[tex].oldHeight 1080",
            "OrvelDRR, modifyShaderUniform4fv_1, su: [1920.000000, 1080.000000, 1.000521, 1.000926] -> "
            "[1280.000000, 720.000000, 1.000781, 1.001389]",
            "OrvelDRR, deleteFramebuffers, fb: 3 in mFramebufferDetailMap, erase it"));
}

// Catches a switch for a target that differs in one dimension only, and one for the size that is applied already.
TEST_F(DynamicResolution, SwitchesOnlyWhenBothDimensionsDiffer) {
    start();
    for (const TEX_SIZE size : {kSmall, TEX_SIZE{1280, 800}, TEX_SIZE{1000, 720}, kSmall}) {
        switchTo(size);
        EXPECT_EQ(applied(), kSmall);
    }
}

// ---- recording and substitution -----------------------------------------------------------------------

// Catches recording that follows the substituted name or size, and a texture that keeps its replacement when the game
// stores it again.
TEST_F(DynamicResolution, RecordsTheGamesNamesAndSizes) {
    start();
    allocate(7);
    allocate(8, GL_RGBA8, kSmall); // no base size
    attach(3, GL_COLOR_ATTACHMENT0, 7);
    EXPECT_EQ(bound(7), 7u);
    switchTo(kSmall);
    EXPECT_EQ(bound(7), 100u);
    EXPECT_EQ(bound(8), 8u);
    mDriver->forget();
    attach(4, GL_COLOR_ATTACHMENT3, 7);
    EXPECT_THAT(mDriver->calls(), ElementsAre(call("glBindFramebuffer", GL_FRAMEBUFFER, 4),
                                              call("glFramebufferTexture2D", GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT3,
                                                   GL_TEXTURE_2D, 100, 0)));
    mDriver->forget();
    allocate(7);
    EXPECT_THAT(mDriver->calls(), ElementsAre(call("glBindTexture", GL_TEXTURE_2D, 100),
                                              call("glTexStorage2D", GL_TEXTURE_2D, 1, GL_RGBA8, 1280, 720)));
    EXPECT_EQ(bound(7), 7u);
    mDriver->forget();
    switchTo(kTiny); // copies from what the driver allocated above, not from the replacement before that
    EXPECT_THAT(glCalls(),
                Contains(call("glBlitFramebuffer", 0, 0, 1280, 720, 0, 0, 960, 540, GL_COLOR_BUFFER_BIT, GL_NEAREST)));
}

// Catches entries made by a lookup: for unrecorded textures, for names asked about; and one that is not made where an
// attachment that nothing watches makes it.
TEST_F(DynamicResolution, WalksOnlyFramebuffersWithARecordedTexture) {
    start("com.example.game", true);
    allocate(7);
    attach(3, GL_DEPTH_STENCIL_ATTACHMENT, 7);
    attach(4, GL_COLOR_ATTACHMENT0, 8);
    attach(5, GL_COLOR_ATTACHMENT0, 0);
    attach(6, GL_COLOR_ATTACHMENT0, 7);
    attach(6, GL_COLOR_ATTACHMENT0, 0); // detaching is deliberately not recorded
    const GLuint strangers[] = {40, 41};
    mGame.glDeleteTextures(2, strangers);
    mGame.glDeleteFramebuffers(2, strangers);
    mGame.glDeleteTextures(-1, nullptr);
    drrDeleteFramebuffers(1, nullptr);
    LogCapture log;
    switchTo(kSmall);
    const auto lines = log.texts(ANDROID_LOG_DEBUG);
    const std::string walked = "OrvelDRR, traverse mFramebufferDetailMap, framebuffer: ";
    EXPECT_THAT(lines, Contains(walked + "3, color0: -1, color1: -1, color2: -1, depthStencil: -1"));
    EXPECT_THAT(lines, Contains(walked + "6, color0: 7, color1: -1, color2: -1, depthStencil: -1"));
    EXPECT_THAT(lines, Contains(StartsWith(walked)).Times(2));
}

// Catches a replacement that is freed with its texture, a deleted texture that is still substituted, and an entry
// that goes while one of its textures is recorded, or stays when none is.
TEST_F(DynamicResolution, DeletingKeepsReplacementsAndFramebuffersInUse) {
    start();
    allocate(7);
    allocate(8);
    attach(3, GL_COLOR_ATTACHMENT0, 7);
    attach(3, GL_STENCIL_ATTACHMENT, 8);
    switchTo(kSmall);
    const GLuint color[] = {7};
    const GLuint stencil[] = {8};
    const GLuint framebuffer[] = {3};
    mDriver->forget();
    mGame.glDeleteTextures(1, color);
    mGame.glDeleteFramebuffers(1, framebuffer);
    EXPECT_THAT(mDriver->calls(),
                ElementsAre(call("glDeleteTextures", 1, color), call("glDeleteFramebuffers", 1, framebuffer)));
    EXPECT_EQ(bound(7), 7u);
    switchTo(kTiny);
    EXPECT_THAT(mDriver->calls(), Contains(attached(3, GL_STENCIL_ATTACHMENT, 102)[1]));
    mGame.glDeleteTextures(1, stencil);
    mGame.glDeleteFramebuffers(1, framebuffer);
    allocate(8);
    mDriver->forget();
    switchTo(kSmall);
    EXPECT_EQ(glCalls().size(), 3u); // clear colour, clear, draw framebuffer
}

// ---- sizes and uniforms -------------------------------------------------------------------------------

// Catches a hook that rewrites the wrong pair, sizes changed before a switch, and sizes of no list changed.
TEST_F(DynamicResolution, RewritesBaseSizes) {
    start();
    EXPECT_EQ(applied(), kBase);
    switchTo(kSmall);
    mDriver->forget();
    mGame.glViewport(1, 2, 1920, 1080);
    mGame.glScissor(1, 2, 2400, 1080);
    mGame.glViewport(1920, 1080, 1920, 1079);
    mGame.glBlitFramebuffer(1920, 1080, 1920, 1080, 2400, 1080, 100, 200, 1, 2);
    mGame.glBlitFramebuffer(0, 0, 100, 200, 0, 0, 1920, 1080, 1, 2);
    EXPECT_THAT(mDriver->calls(),
                ElementsAre(call("glViewport", 1, 2, 1280, 720), call("glScissor", 1, 2, 1280, 720),
                            call("glViewport", 1920, 1080, 1920, 1079),
                            call("glBlitFramebuffer", 1920, 1080, 1280, 720, 2400, 1080, 100, 200, 1, 2),
                            call("glBlitFramebuffer", 0, 0, 100, 200, 0, 0, 1280, 720, 1, 2)));
    TEX_SIZE size = kTiny; // by the available sizes this time
    mDrr->modifyShaderSizeParams(size.width, size.height);
    EXPECT_EQ(size, kSmall);
}

// Catches a form that is recognised too readily or not at all, an "and" where one unchanged component is enough to
// leave the vector alone, and a game's array that is written.
TEST_F(DynamicResolution, RewritesScreenSizeUniforms) {
    using Vector = std::array<float, 4>;
    constexpr float kX = 1 / 1920.f, kY = 1 / 1080.f;
    const Vector screen = {1280, 720, 1 + 1 / 1280.f, 1 + 1 / 720.f};
    const Vector texel = {1 / 1280.f, 1 / 720.f, 1280, 720};
    Vector arrived{};
    mDriver->answer<&GlTable::glUniform4fv>(
        [&](GLint, GLsizei, const GLfloat* v) { std::memcpy(arrived.data(), v, sizeof arrived); });
    start();
    switchTo(kSmall);
    const auto check = [&](const Vector& given, const Vector& expected) {
        Vector array = given;
        mGame.glUniform4fv(1, 1, array.data());
        EXPECT_EQ(arrived, expected);
        EXPECT_EQ(array, given);
    };
    check({1920, 1080, 1 + kX, 1 + kY}, screen);
    check({kX, kY, 1920, 1080}, texel);
    check({1920, 1080, 1.00061f, 1 + kY}, screen); // within the tolerance
    check({kX, 0.00102f, 1920, 1080}, texel);
    // No base size once the fraction is gone, but changed by losing it.
    check({1000.5f, 500.5f, 1.001f, 1.002f}, {1000, 500, 1 + 1 / 1000.f, 1 + 1 / 500.f});
    const Vector others[] = {
        {1000.5f, 500, 1.001f, 1.002f},           {1000, 500, 1.001f, 1.002f}, {.001f, .002f, 1000, 500},
        {1920, 1080, 1.00063f, 1 + kY},           {kX, .00104f, 1920, 1080},   {1920, 1080, 1, 1 + kY},
        {3e9f, 3e9f, 1.00005f, 1.00005f}, // no integer
        {INFINITY, INFINITY, 1.00005f, 1.00005f}, {2, 2, 1.5f, 1.5f},          {0, 0, 0, 0}};
    for (const Vector& kept : others) {
        check(kept, kept);
    }
}

// ---- the doors that stay shut -------------------------------------------------------------------------

// Catches an illegal size that is recorded, that only pauses the feature, or goes unsaid without the debug flag; and
// an instance that works although it is not enabled.
TEST_F(DynamicResolution, IllegalSizeStopsEverything) {
    orvel::OrvelDRR unusable(false, true, "com.example.game", 10, {kBase}, {kSmall}, {kIllegal});
    mOrvelDRR = &unusable;
    mEnableDynamicResolution = true;
    LogCapture quiet;
    allocate(8, GL_RGBA8, kIllegal);
    swap();
    EXPECT_TRUE(isOrvelDRREnable());
    EXPECT_THAT(quiet.lines(), IsEmpty());
    start();
    allocate(7);
    attach(3, GL_COLOR_ATTACHMENT0, 7);
    switchTo(kSmall);
    LogCapture log;
    allocate(8, GL_RGBA8, kIllegal);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_DEBUG, "OrvelDRR, illegalSize: 333x444, disable drr"}));
    EXPECT_FALSE(isOrvelDRREnable());
    EXPECT_EQ(bound(7), 7u);
    EXPECT_EQ(applied(), kBase);
    mDriver->forget();
    switchTo(kTiny);
    EXPECT_THAT(glCalls(), IsEmpty());
}

// Catches a switch after the illegal program was used, one that any program prevents, and a swapped pair of labels.
TEST_F(DynamicResolution, IllegalProgramStopsSwitching) {
    start("com.example.game", true);
    mGame.glUseProgram(GLuint(-1)); // nothing was labelled yet
    mGame.glLabelObjectEXT(GL_PROGRAM_OBJECT_EXT, 5, 0, "Dynamic Sky/Cube Ground Cloud");
    mGame.glLabelObjectEXT(GL_PROGRAM_OBJECT_EXT, 6, 0, "Dynamic Sky/Cube Ground Clouds");
    mGame.glUseProgram(6);
    switchTo(kSmall);
    EXPECT_EQ(applied(), kSmall);
    LogCapture log;
    mGame.glUseProgram(5);
    mGame.glUseProgram(6);
    switchTo(kTiny);
    EXPECT_EQ(applied(), kSmall);
    EXPECT_THAT(log.texts(ANDROID_LOG_DEBUG), ElementsAre("OrvelDRR, markCurrentProgram, IllegalScene",
                                                          "OrvelDRR, onEglSwapBuffersEnd, existIllegalShader"));
}

// Catches a restore that waits for the interval, that goes to another size than the game's last of any call or to one
// that is made up, and one that ends.
TEST_F(DynamicResolution, RestoreTexturePinsTheOriginSize) {
    const auto bindRestoreTexture = [this] {
        mGame.glLabelObjectEXT(GL_TEXTURE, 9, 0, "CameraDesc");
        mGame.glBindTexture(GL_TEXTURE_2D, 9);
    };
    start();
    bindRestoreTexture();
    mDriver->forget();
    swap();
    EXPECT_THAT(glCalls(), IsEmpty());
    start("com.example.game", true);
    LogCapture log;
    switchTo(kSmall);
    const GLfloat screen[4] = {2400, 1080, 1 + 1 / 2400.0f, 1 + 1 / 1080.0f};
    mGame.glUniform4fv(0, 1, screen);
    bindRestoreTexture();
    mPlatform.eglSwapBuffers(nullptr, nullptr); // no time has passed
    EXPECT_EQ(sizeOf({2400, 1080}), (TEX_SIZE{2400, 1080}));
    EXPECT_TRUE(log.has(ANDROID_LOG_DEBUG, "OrvelDRR, updateDrConfig, force restore to origin size: 2400x1080"));
    switchTo(kTiny);
    EXPECT_EQ(sizeOf({2400, 1080}), (TEX_SIZE{2400, 1080}));
}

// ---- Hkrpg --------------------------------------------------------------------------------------------

// Catches a rebinding of the unit that was active before, a replacement of a replacement that is missed, and an entry
// that names what is gone.
TEST_F(DynamicResolution, HkrpgRebindsOnTheUnitThatBecameActive) {
    const auto callsFor = [this](GLint binding) {
        mDriver->answer<&GlTable::glGetIntegerv>([binding](GLenum, GLint* value) { *value = binding; });
        mDriver->forget();
        mGame.glActiveTexture(GL_TEXTURE3);
        return glCalls();
    };
    const auto startAs = [this](const char* package) {
        start(package);
        allocate(7);
        attach(3, GL_COLOR_ATTACHMENT0, 7);
    };
    const std::string active = call("glActiveTexture", GL_TEXTURE3);
    const std::string query = "glGetIntegerv(" + std::to_string(GL_TEXTURE_BINDING_2D) + ", *)";
    const auto bind = [](GLuint name) { return call("glBindTexture", GL_TEXTURE_2D, name); };

    startAs("com.miHoYo.hkrpg.game");
    EXPECT_THAT(callsFor(7), ElementsAre(active));
    startAs("com.miHoYo.hkrpg");
    EXPECT_THAT(callsFor(7), ElementsAre(active, query)); // recorded, not replaced yet
    ask("hkrpg 1280 720");
    swap();
    EXPECT_THAT(callsFor(7), ElementsAre(active, query, bind(100)));
    EXPECT_THAT(callsFor(100), ElementsAre(active, query)); // there is no newer one
    ask("hkrpg 960 540");
    swap();
    EXPECT_THAT(callsFor(100), ElementsAre(active, query, bind(101)));
    EXPECT_THAT(callsFor(100), ElementsAre(active, query)); // forgotten for 101
    const GLuint gone[] = {7};
    mGame.glDeleteTextures(1, gone);
    EXPECT_THAT(callsFor(7), ElementsAre(active, query));
}
