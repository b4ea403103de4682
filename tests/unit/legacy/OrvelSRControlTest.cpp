#include "legacy/OrvelSRControl.h"

#include "DesktopWindow.h"
#include "LogCapture.h"
#include "RecordingDriver.h"
#include "TestRoot.h"
#include "legacy/OrvelBackbufferControl.h"
#include "loader/OrvelLegacyHooks.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <numeric>
#include <sys/prctl.h>

using namespace android;
using android::orvel::OrvelBackbufferControl;
using android::orvel::OrvelSRControl;
using android::orvel::next::GlTable;
using com::velmor::ravelo::TEX_SIZE;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

namespace {

constexpr int kUnknown = -1;

class FakeWindow : public desktop::DesktopWindow {
public:
    desktop::WindowGeometry geometry() const override { return now; }
    int32_t setBuffersGeometry(const desktop::WindowGeometry& wanted) override {
        now = wanted;
        return 0;
    }
    void is(int width, int height) { now = {width, height, 5}; }

    desktop::WindowGeometry now{2712, 1220, 5};
};

/** A game with super resolution from 1620x728 to 2712x1220 whose window is resized along with it. */
class SuperResolution : public testing::Test {
protected:
    void SetUp() override {
        installVoHooks(mDriver->connection());
        orvel::OrvelSettings& settings = orvel::OrvelSettings::getInstance();
        settings.mPackageName = "com.example.game";
        mPrefs = settings.mPrefs = new com::velmor::ravelo::OrvelPrefs;
        mPrefs->mSRSizes = {TEX_SIZE{1620, 728}, TEX_SIZE{2712, 1220}};
        mPrefs->mBackbufferSizes = {2712, 1220, 100, 200, 1808, 814, 2400, 1080};
        mPrefs->mBackbufferSizeValid = true;
        mDriver->answer<&GlTable::glGetIntegerv>([this](GLenum name, GLint* value) {
            if (name == GL_VIEWPORT || name == GL_SCISSOR_BOX) {
                std::iota(value, value + 4, name == GL_VIEWPORT ? 1 : 5);
            } else if (const auto state = mState.find(name); state != mState.end()) {
                *value = state->second;
            }
        });
        mDriver->answer<&GlTable::glLabelObjectEXT>(
            [this](GLenum, GLuint, GLsizei, const GLchar* label) { mLabels.push_back(label); });
        mDriver->answer<&GlTable::glGetTexLevelParameteriv>(
            [this](GLenum, GLint, GLenum name, GLint* value) { *value = mState[name]; });
        mDriver->answer<&GlTable::glGenTextures>([this](GLsizei, GLuint* name) { *name = mNextName++; });
        mDriver->answer<&GlTable::glGetUniformLocation>([](GLuint, const GLchar* name) { return GLint(name[1]); });
    }
    void TearDown() override {
        prctl(PR_SET_NAME, "test");
        delete std::exchange(orvel::OrvelSettings::getInstance().mPrefs, nullptr);
    }
    void start() { mControl.initSuperResolutionConfig(); }
    void swap() { mPlatform.eglSwapBuffers(nullptr, nullptr); }
    void write(const std::string& text) { mRoot.write("/data/system/mcd/sr", text); }
    /** Makes the surface on a thread of that name. */
    void makeSurface(const char* thread = "UnityMain") {
        prctl(PR_SET_NAME, thread);
        ANativeWindow* window = &mWindow;
        mPlatform.eglCreateWindowSurface(nullptr, nullptr, reinterpret_cast<EGLNativeWindowType>(window), nullptr);
    }
    /** The state at the final copy to the window. */
    void beAtFinalCopy() {
        mGame.glLabelObjectEXT(GL_PROGRAM_OBJECT_EXT, kCopyProgram, 0, "Hidden/PostProcessing/Copy");
        mState = {{GL_CURRENT_PROGRAM, kCopyProgram}, {GL_TEXTURE_BINDING_2D, 41},
                  {GL_DRAW_FRAMEBUFFER_BINDING, 0},   {GL_READ_FRAMEBUFFER_BINDING, 42},
                  {GL_ARRAY_BUFFER_BINDING, 43},      {GL_ELEMENT_ARRAY_BUFFER_BINDING, 44},
                  {GL_TEXTURE_WIDTH, 1620},           {GL_TEXTURE_HEIGHT, 728}};
    }
    Calls draw() {
        mDriver->forget();
        mGame.glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr);
        return mDriver->calls();
    }

    static constexpr GLint kCopyProgram = 9;

    TestRoot mRoot;
    std::unique_ptr<RecordingDriver> mDriver = RecordingDriver::installed();
    GlTable& mGame = mDriver->gles2().gl;
    platform_impl_t& mPlatform = mDriver->connection()->platform;
    com::velmor::ravelo::OrvelPrefs* mPrefs = nullptr;
    std::map<GLenum, GLint> mState;
    FakeWindow mWindow;
    OrvelSRControl& mControl = OrvelSRControl::getInstance();
    std::vector<std::string> mLabels;
    GLuint mNextName = 100;
};

} // namespace

// Catches a pass that is missing or misplaced, state that is restored in another order or beyond what the copy needs,
// and objects that are made a second time.
TEST_F(SuperResolution, ReplacesThePictureOfTheFinalCopy) {
    start();
    write("game 1");
    swap();
    beAtFinalCopy();
    mDriver->answer<&GlTable::glGenVertexArrays>([this](GLsizei, GLuint* name) { *name = mNextName++; });
    mDriver->answer<&GlTable::glCreateProgram>([this] { return mNextName++; });
    mDriver->answer<&GlTable::glGenFramebuffers>([this](GLsizei, GLuint* name) { *name = mNextName++; });
    LogCapture log;
    draw(); // makes the passes
    const auto parameter = [](GLenum name, GLint value) { return call("glTexParameteri", GL_TEXTURE_2D, name, value); };
    const Calls pass = {call("glTexStorage2D", GL_TEXTURE_2D, 1, GL_RGBA8, 2712, 1220),
                        parameter(GL_TEXTURE_BASE_LEVEL, 0),
                        parameter(GL_TEXTURE_MAX_LEVEL, 0),
                        parameter(GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE),
                        parameter(GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE),
                        parameter(GL_TEXTURE_WRAP_R, GL_CLAMP_TO_EDGE),
                        parameter(GL_TEXTURE_MIN_FILTER, GL_NEAREST),
                        parameter(GL_TEXTURE_MAG_FILTER, GL_NEAREST),
                        parameter(GL_TEXTURE_MIN_FILTER, GL_LINEAR),
                        parameter(GL_TEXTURE_MAG_FILTER, GL_LINEAR),
                        parameter(GL_TEXTURE_MAX_ANISOTROPY_EXT, 1),
                        parameter(GL_TEXTURE_SRGB_DECODE_EXT, GL_DECODE_EXT),
                        call("glDrawArrays", GL_TRIANGLES, 0, 3)};
    Calls both = pass; // the second is made after the first has drawn
    both.insert(both.end(), pass.begin(), pass.end());
    EXPECT_EQ(mDriver->callsOf({"glTexParameteri", "glTexStorage2D", "glDrawArrays"}), both);
    EXPECT_THAT(mDriver->callsOf({"glBindAttribLocation", "glLinkProgram"}),
                ElementsAre(testing::StartsWith("glBindAttribLocation"), testing::StartsWith("glLinkProgram"),
                            testing::StartsWith("glBindAttribLocation"), testing::StartsWith("glLinkProgram")));
    EXPECT_TRUE(log.has(ANDROID_LOG_DEBUG, "SuperResolution SR mFSREASUParam[15] = 0.596721"));
    EXPECT_THAT(mLabels, ElementsAre("Hidden/PostProcessing/Copy", "FSREASU", "FSRRCAS"));
    const GLuint easu = 100; // names in order: texture, framebuffer, program, vertex array of each pass
    const GLuint rcas = 104;
    draw();
    EXPECT_THAT(mDriver->callsWithout({"glGet", "glUniform"}),
                ElementsAre(call("glBindTexture", GL_TEXTURE_2D, 41),
                            call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, easu + 1),
                            call("glViewport", 0, 0, 2712, 1220), call("glScissor", 0, 0, 2712, 1220),
                            call("glUseProgram", easu + 2), call("glBindVertexArray", easu + 3),
                            call("glDrawArrays", GL_TRIANGLES, 0, 3), call("glBindTexture", GL_TEXTURE_2D, easu),
                            call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, rcas + 1), call("glUseProgram", rcas + 2),
                            call("glBindVertexArray", rcas + 3), call("glDrawArrays", GL_TRIANGLES, 0, 3),
                            // The result stays bound; the vertex array takes the array buffer's name.
                            call("glBindTexture", GL_TEXTURE_2D, rcas), call("glViewport", 1, 2, 3, 4),
                            call("glScissor", 5, 6, 7, 8), call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, 0),
                            call("glBindFramebuffer", GL_READ_FRAMEBUFFER, 42), call("glUseProgram", kCopyProgram),
                            call("glBindVertexArray", 43), call("glBindBuffer", GL_ELEMENT_ARRAY_BUFFER, 44),
                            call("glDrawElements", GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr)));
}

// Catches a picture that is replaced when it should not be, and a failed query that passes for a final copy.
TEST_F(SuperResolution, LeavesEverythingElseAlone) {
    start();
    write("game 1");
    swap();
    // What is asked before the decision, besides the draw.
    constexpr size_t kNothing = 1;
    constexpr size_t kProgram = 2;
    constexpr size_t kState = 11;
    const auto check = [&](const char* what, size_t calls, auto change) {
        SCOPED_TRACE(what);
        beAtFinalCopy();
        change();
        EXPECT_EQ(draw().size(), calls);
        EXPECT_THAT(mDriver->callsWithout({"glGet"}), ElementsAre(testing::StartsWith("glDrawElements")));
    };
    check("other framebuffer", kState, [&] { mState[GL_DRAW_FRAMEBUFFER_BINDING] = 3; });
    check("unknown framebuffer", kState, [&] { mState.erase(GL_DRAW_FRAMEBUFFER_BINDING); });
    check("other width", kState, [&] { mState[GL_TEXTURE_WIDTH] = 1621; });
    check("other height", kState, [&] { mState[GL_TEXTURE_HEIGHT] = 1; });
    const auto labelled = [&](GLenum type, const char* label) {
        mGame.glLabelObjectEXT(type, 77, 0, label);
        mState[GL_CURRENT_PROGRAM] = 77;
    };
    check("other label", kProgram, [&] { labelled(GL_PROGRAM_OBJECT_EXT, "Hidden/PostProcessing/Copy2"); });
    check("other type", kProgram, [&] { labelled(GL_PROGRAM, "Hidden/PostProcessing/Copy"); });
    write("game 2");
    swap();
    check("switched off", kNothing, [] {});
    write("game 1");
    swap();
    mPrefs->mSRSizes[0].height = 0;
    start();
    mGame.glLabelObjectEXT(GL_PROGRAM_OBJECT_EXT, 79, 0, "Hidden/PostProcessing/Copy"); // not even recorded
    check("a size below 1", kNothing, [] {});
    mPrefs->mSRSizes[0].height = 728;
    start();
    check("recorded too early", kProgram, [&] { mState[GL_CURRENT_PROGRAM] = 79; });
    mGame.glLabelObjectEXT(GL_PROGRAM_OBJECT_EXT, 78, 26, "Hidden/PostProcessing/CopyX"); // a label with a length
    beAtFinalCopy();
    mState[GL_CURRENT_PROGRAM] = 78;
    EXPECT_GT(draw().size(), kState);
}

// Catches a switch that is read in another way, at another time or without being watched; another log text.
TEST_F(SuperResolution, FollowsTheSwitchFile) {
    mPrefs->mBackbufferSizeValid = false;
    LogCapture log;
    start();
    EXPECT_TRUE(log.has(ANDROID_LOG_DEBUG, "SuperResolution SR initSR mBaseSRWidthSize: 1620, mBaseSRHeightSize: 728, "
                                           "mTargetSRWidthSize: 2712, mTargetSRHeightSize: 1220"));
    write("com.other 1\nexample 0\ngame 1\n");
    using Lines = std::vector<LogLine>;
    const auto linesOfSwap = [&](const char* text) {
        log.clear();
        if (text) {
            write(text);
        }
        swap();
        return log.lines();
    };
    const auto status = [](int value) {
        return LogLine{ANDROID_LOG_INFO, "SuperResolution SR mSwitchStatusSR:" + std::to_string(value)};
    };
    // Off, but readable: from now on it is watched.
    EXPECT_EQ(linesOfSwap(nullptr), (Lines{status(0), {ANDROID_LOG_INFO, "Support SuperResolution SR."}}));
    EXPECT_EQ(linesOfSwap(nullptr), Lines{});
    // Deliberate: whatever word the first line has.
    EXPECT_EQ(linesOfSwap("com.other 1\ngame 0"), Lines{status(1)});
    EXPECT_EQ(linesOfSwap("com.other one\ngame 0"),
              (Lines{{ANDROID_LOG_ERROR, "SuperResolution SR parse error: com.other one"}, status(-1)}));
    EXPECT_EQ(linesOfSwap("\ngame 1"), (Lines{{ANDROID_LOG_ERROR, "SuperResolution SR parse error: "}, status(-1)}));
    EXPECT_EQ(linesOfSwap(""), Lines{status(-1)}); // no line at all is no error
    EXPECT_EQ(linesOfSwap("game 1 and more\n"), Lines{status(1)});
    const std::string endless = linesOfSwap(std::string(10'000, 'x').c_str()).at(0).text;
    EXPECT_EQ(endless, "SuperResolution SR parse error: " + std::string(200, 'x'));
}

// Catches a feature that gives up the game, or spams its log, because a file is missing.
TEST_F(SuperResolution, StaysOffWithoutAReadableSwitch) {
    start();
    LogCapture log;
    swap();
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{ANDROID_LOG_ERROR, "SuperResolution SR open fail: No such file or directory"},
                            LogLine{ANDROID_LOG_INFO, "SuperResolution SR mSwitchStatusSR:-1"},
                            LogLine{ANDROID_LOG_DEBUG, "mBFSizeConfig SR OFF"},
                            LogLine{ANDROID_LOG_ERROR, "setANWBuffersGeometry, scale backbuffer error!"}));
    EXPECT_EQ(mControl.getTargetBackbufferSize(), std::pair(1808, 814));
    log.clear();
    write("game 1"); // too late: only a switch that was there at the first swap is watched
    swap();
    beAtFinalCopy();
    EXPECT_EQ(draw().size(), 1u);
    EXPECT_EQ(log.lines().size(), 0u);
}

// Catches a window of another thread, a resize from an unknown size, and a size that is asked in the wrong state.
TEST_F(SuperResolution, ResizesTheWindowWithTheSwitch) {
    start();
    makeSurface("UnityMainX");
    write("game 0");
    LogCapture log;
    swap();
    EXPECT_TRUE(log.has(ANDROID_LOG_ERROR, "setANWBuffersGeometry, scale backbuffer error!")); // not that thread's
    EXPECT_THAT(mDriver->calls(), Not(Contains(call("glViewport", 0, 0, 1808, 814))));
    EXPECT_EQ(mControl.getTargetBackbufferSize(), std::pair(1808, 814)); // but asked for
    makeSurface();
    mDriver->forget();
    write("game 1");
    swap();
    using testing::MatchesRegex;
    EXPECT_THAT(log.texts(ANDROID_LOG_INFO),
                IsSupersetOf({
                    MatchesRegex("updateANativeWindow: UnityMain-[0-9]+, 0x[0-9a-f]+"),
                    MatchesRegex("updateANativeWindow-success: UnityMain-[0-9]+, 0x[0-9a-f]+"),
                    MatchesRegex("setANWBuffersGeometry: 0x[0-9a-f]+, 2400x1080-5"),
                }));
    EXPECT_EQ(mWindow.now, (desktop::WindowGeometry{2400, 1080, 5}));
    EXPECT_THAT(mDriver->calls(),
                ElementsAre(testing::StartsWith("platform.eglSwapBuffers"), call("glViewport", 0, 0, 2400, 1080),
                            call("glScissor", 0, 0, 2400, 1080)));
    EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "setANWBuffersGeometry, scale backbuffer, 2712x1220-5 --> 2400x1080-5, 0"));
    EXPECT_TRUE(log.has(ANDROID_LOG_DEBUG, "mBFSizeConfig SR ON"));
    EXPECT_EQ(mControl.getTargetBackbufferSize(), std::pair(2400, 1080));
}

// Catches an orientation, the tolerated size or an unknown one taken for another case.
TEST_F(SuperResolution, KnowsTheWindowsSizes) {
    OrvelBackbufferControl& window = OrvelBackbufferControl::getInstance();
    LogCapture log;
    makeSurface();
    for (const auto& [width, height] : {std::pair{0, 5}, {5, 10'000}, {10'000, 5}, {-1, 5}}) {
        EXPECT_FALSE(window.setANWBuffersGeometry(width, height));
    }
    const auto errors = log.texts(ANDROID_LOG_ERROR);
    EXPECT_EQ(std::count(errors.begin(), errors.end(), "setANWBuffersGeometry, scale backbuffer error!"), 4);
    struct Case {
        int width, height;
        bool resized, enabled;
    };
    for (const Case& c : {Case{2712, 1220, true, true},
                          {1220, 2712, true, true},
                          {814, 1808, true, true},
                          {2400, 1080, true, true},
                          {100, 200, false, true},
                          {200, 100, false, true},
                          {2712, 1080, false, false},
                          {kUnknown, kUnknown, false, false}}) {
        SCOPED_TRACE(testing::Message() << c.width << 'x' << c.height);
        mPrefs->mBackbufferSizeValid = true;
        mWindow.is(c.width, c.height);
        EXPECT_EQ(window.setANWBuffersGeometry(9999, 1), c.resized);
        EXPECT_EQ(mWindow.now.width, c.resized ? 9999 : c.width);
        EXPECT_EQ(window.isEnableBackbufferScale(), c.enabled);
    }
    EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "setANWBuffersGeometry, disableBackbufferScale"));
}

// Catches user sizes that are rewritten the wrong way round, and an unknown one that is let pass.
TEST_F(SuperResolution, RewritesTheSizesThatTheGameStates) {
    OrvelBackbufferControl& window = OrvelBackbufferControl::getInstance();
    const auto rewritten = [&](unsigned width, unsigned height) {
        window.checkModifyUserDimensions(width, height);
        return std::pair(width, height);
    };
    using Size = std::pair<unsigned, unsigned>;
    EXPECT_EQ(rewritten(2712, 1220), Size(2712, 1220)); // nothing was applied yet
    makeSurface();
    window.setANWBuffersGeometry(1808, 814);
    LogCapture log;
    EXPECT_EQ(rewritten(2712, 1220), Size(1808, 814));
    EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "checkModifyUserDimensions, 2712x1220 -> 1808x814"));
    EXPECT_EQ(rewritten(2400, 1080), Size(1808, 814));
    EXPECT_EQ(rewritten(0, 0), Size(0, 0));
    EXPECT_EQ(rewritten(100, 200), Size(100, 200));
    EXPECT_TRUE(window.isEnableBackbufferScale());
    EXPECT_EQ(rewritten(1220, 2712), Size(1220, 2712)); // this orientation is unknown here
    EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "checkModifyUserDimensions, disableBackbufferScale"));
    EXPECT_FALSE(window.isEnableBackbufferScale());
    EXPECT_EQ(rewritten(2712, 1220), Size(2712, 1220));
}
