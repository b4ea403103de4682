#include "loader/OrvelLegacyHooks.h"

#include "LogCapture.h"
#include "RecordingDriver.h"
#include "TestRoot.h"
#include "legacy/FrameCapture.h"
#include "legacy/SceneRecognizer.h"
#include "next/OrvelNext.h"
#include "settings/orvel_modify_params.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

using namespace android;
using android::orvel::next::GlTable;
namespace next = android::orvel::next;
using testing::ElementsAre;

namespace {

/** The connection's tables hold hooks, the library's saved tables the recording driver. */
class LegacyHooks : public testing::Test {
protected:
    void SetUp() override { installVoHooks(mDriver->connection()); }

    std::unique_ptr<RecordingDriver> mDriver = RecordingDriver::installed();
    GlTable& mGame = mDriver->gles2().gl;
    platform_impl_t& mPlatform = mDriver->connection()->platform;
};

} // namespace

/** Sets every switch behind the hooks but dynamic resolution's; no feature object exists. */
void switchOn(bool on) {
    mEnableAFModify = on;
    mTargetAFValue = 16;
    mEnableShadingRate = on;
    mEnableScaleResolutionSize = on;
    for (bool* recognition : {&mEnableYSSceneRecognize, &mEnableYSTransferRecognize, &mEnableYSLaunchRecognize,
                              &mEnableHkrpgSceneRecognize, &mEnableHPTransferRecognize}) {
        *recognition = on;
    }
}

struct Switches {
    bool dynamicResolution;
    bool others;
};

class ForwardingHooks : public LegacyHooks, public testing::WithParamInterface<Switches> {};

// Catches a swallowed call, swapped arguments, an extra driver call of a feature that has nothing to do, and a hook that
// forwards to the hooked table (which would never return): before the hooks' gates and behind them.
TEST_P(ForwardingHooks, MakeExactlyOneCallWhereNothingIsToBeChanged) {
    mEnableDynamicResolution = GetParam().dynamicResolution;
    switchOn(GetParam().others);
    const GLuint names[] = {5, 6};
    const GLenum attachment = GL_DEPTH_ATTACHMENT;
    const void* indices = names;
    GLuint pixels[4];
    mGame.glTexParameteri(1, 2, 3);
    mGame.glTexStorage2D(1, 2, 3, 4, 5);
    mGame.glViewport(1, 2, 3, 4);
    mGame.glScissor(1, 2, 3, 4);
    mGame.glBlitFramebuffer(1, 2, 3, 4, 5, 6, 7, 8, 9, 10);
    mGame.glDrawArrays(1, 2, 3);
    mGame.glDrawElements(1, 2, 3, indices);
    mGame.glDrawElementsBaseVertex(1, 2, 3, indices, 4);
    mGame.glClear(1);
    mGame.glInvalidateFramebuffer(1, 1, &attachment);
    mGame.glBindTexture(1, 2);
    mGame.glBindFramebuffer(1, 2);
    mGame.glFramebufferTexture2D(1, 2, 3, 4, 5);
    mGame.glDeleteTextures(2, names);
    mGame.glDeleteFramebuffers(2, names);
    mGame.glUseProgram(1);
    mGame.glActiveTexture(1);
    mGame.glReadPixels(1, 2, 3, 4, 5, 6, pixels);
    EXPECT_THAT(
        mDriver->calls(),
        ElementsAre(call("glTexParameteri", 1, 2, 3), call("glTexStorage2D", 1, 2, 3, 4, 5),
                    call("glViewport", 1, 2, 3, 4), call("glScissor", 1, 2, 3, 4),
                    call("glBlitFramebuffer", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10), call("glDrawArrays", 1, 2, 3),
                    call("glDrawElements", 1, 2, 3, indices), call("glDrawElementsBaseVertex", 1, 2, 3, indices, 4),
                    call("glClear", 1), call("glInvalidateFramebuffer", 1, 1, &attachment), call("glBindTexture", 1, 2),
                    call("glBindFramebuffer", 1, 2), call("glFramebufferTexture2D", 1, 2, 3, 4, 5),
                    call("glDeleteTextures", 2, names), call("glDeleteFramebuffers", 2, names), call("glUseProgram", 1),
                    call("glActiveTexture", 1), call("glReadPixels", 1, 2, 3, 4, 5, 6, &pixels[0])));
}

INSTANTIATE_TEST_SUITE_P(Switches, ForwardingHooks,
                         testing::Values(Switches{false, false}, Switches{true, false}, Switches{false, true},
                                         Switches{true, true}));

// Catches a game's array that is written or passed where a copy belongs, and a copy of a count that is not handled.
TEST_F(LegacyHooks, UniformsPassACopyOnlyWhereTheyMayBeRewritten) {
    const GLfloat vectors[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    const GLfloat* arrived = nullptr;
    GLfloat values[16];
    mDriver->answer<&GlTable::glUniform4fv>([&](GLint, GLsizei count, const GLfloat* value) {
        arrived = value;
        std::memcpy(values, value, sizeof(GLfloat) * 4 * static_cast<size_t>(count));
    });
    mEnableScaleResolutionSize = true;
    for (const bool dynamicResolution : {false, true}) {
        mEnableDynamicResolution = dynamicResolution;
        mGame.glUniform4fv(7, 1, vectors);
        EXPECT_NE(arrived, vectors);
        EXPECT_EQ(std::memcmp(values, vectors, 4 * sizeof(GLfloat)), 0);
        for (const GLsizei count : {2, 3, 4}) {
            mGame.glUniform4fv(7, count, vectors);
            EXPECT_EQ(arrived, vectors) << count;
        }
    }

    const GLuint size[4] = {1920, 0xFFFFFFFF, 3, 4};
    const GLuint* arrivedSize = nullptr;
    GLuint sizes[2];
    mDriver->answer<&GlTable::glUniform2uiv>([&](GLint, GLsizei, const GLuint* value) {
        arrivedSize = value;
        std::memcpy(sizes, value, sizeof sizes);
    });
    mGame.glUniform2uiv(7, 1, size);
    EXPECT_NE(arrivedSize, size);
    EXPECT_EQ(std::memcmp(sizes, size, sizeof sizes), 0);
    mGame.glUniform2uiv(7, 2, size);
    EXPECT_EQ(arrivedSize, size);
}

// Catches shader text edited in calls of several strings, edited lengths, and a crash on missing text.
TEST_F(LegacyHooks, OffersOnlySingleStringsToShaderReplacement) {
    mShaderReplaceValue = 1;
    char first[] = "mediump float;";
    char second[] = "mediump int;";
    const GLchar* strings[] = {first, second};
    const GLint lengths[] = {14, 12};
    mGame.glShaderSource(3, 2, strings, lengths);
    EXPECT_STREQ(first, "mediump float;");
    mGame.glShaderSource(3, 1, strings, lengths);
    EXPECT_STREQ(first, "lowp float;");
    EXPECT_STREQ(second, "mediump int;");
    const GLchar* nothing[] = {nullptr};
    mGame.glShaderSource(3, 1, nothing, nullptr);
    mGame.glShaderSource(3, 1, nullptr, nullptr);
    EXPECT_THAT(mDriver->calls(), ElementsAre(call("glShaderSource", 3, 2, strings, lengths),
                                              call("glShaderSource", 3, 1, strings, lengths),
                                              call("glShaderSource", 3, 1, nothing, nullptr),
                                              call("glShaderSource", 3, 1, nullptr, nullptr)));
}

// Catches a label that is read past its end, and one that reaches the driver as our copy.
TEST_F(LegacyHooks, LabelsPassAsTheGameGaveThem) {
    const GLchar* unterminated = new GLchar[4]{'a', 'b', 'c', 'd'}; // the address sanitizer stands behind it
    const std::string longText(1000, 'x');
    mGame.glLabelObjectEXT(GL_TEXTURE, 1, 4, unterminated);
    const GLchar* text = "text";
    mGame.glLabelObjectEXT(GL_TEXTURE, 2, 0, text);
    mGame.glLabelObjectEXT(GL_TEXTURE, 3, 1000, longText.c_str());
    mGame.glLabelObjectEXT(GL_TEXTURE, 4, 0, nullptr);
    const Calls calls = mDriver->calls();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(calls[0], call("glLabelObjectEXT", GL_TEXTURE, 1, 4, unterminated));
    EXPECT_EQ(calls[1], call("glLabelObjectEXT", GL_TEXTURE, 2, 0, text));
    EXPECT_EQ(calls[2], call("glLabelObjectEXT", GL_TEXTURE, 3, 1000, longText.c_str()));
    EXPECT_EQ(calls[3], call("glLabelObjectEXT", GL_TEXTURE, 4, 0, nullptr));
    delete[] unterminated;
}

// Catches a swap that recurses into the hooked entry, that reaches egl_t with the game's handles, or loses its result.
TEST_F(LegacyHooks, SwapsThroughTheSavedPlatformTable) {
    const auto display = reinterpret_cast<EGLDisplay>(1);
    const auto surface = reinterpret_cast<EGLSurface>(2);
    EXPECT_EQ(mPlatform.eglSwapBuffers(display, surface), EGLBoolean(EGL_FALSE));
    mDriver->answer<&platform_impl_t::eglSwapBuffers>([](EGLDisplay, EGLSurface) { return EGLBoolean(EGL_TRUE); });
    EXPECT_EQ(mPlatform.eglSwapBuffers(display, surface), EGLBoolean(EGL_TRUE));
    const std::string swap = call("platform.eglSwapBuffers", display, surface);
    EXPECT_THAT(mDriver->calls(), ElementsAre(swap, swap));

    mDriver->forget();
    mDriver->answer<&platform_impl_t::eglCreateWindowSurface>(
        [](EGLDisplay, EGLConfig, EGLNativeWindowType, const EGLint*) { return reinterpret_cast<EGLSurface>(9); });
    EXPECT_EQ(mPlatform.eglCreateWindowSurface(display, nullptr, 0, nullptr), reinterpret_cast<EGLSurface>(9));
    EXPECT_EQ(mDriver->calls().size(), 1u);
}

// Catches an SGame swap that bypasses what was installed before it.
TEST(SGameSwap, CallsTheEntryItFound) {
    const auto driver = RecordingDriver::installed();
    static int calls = 0;
    driver->connection()->platform.eglSwapBuffers = [](EGLDisplay, EGLSurface) {
        ++calls;
        return EGLBoolean(EGL_TRUE);
    };
    installOrvelSGAMEHooks(driver->connection());
    EXPECT_EQ(driver->connection()->platform.eglSwapBuffers(nullptr, nullptr), EGLBoolean(EGL_TRUE));
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(driver->calls().empty());
}

// Catches a feature whose switch does not open the gate of one of its hooks, and a swap whose steps come in another
// order: each feature is on alone.
TEST_F(LegacyHooks, EachFeatureOpensItsGates) {
    TestRoot root;
    mDriver->answer<&GlTable::glGetTexLevelParameteriv>([](GLenum, GLint, GLenum, GLint* value) { *value = 4; });
    const auto seen = [&](auto play) {
        mDriver->forget();
        play();
        return mDriver->calls();
    };
    mEnableShadingRate = true;
    mShadingRate = 3;
    static GLenum rate;
    for (const auto draw : {0, 1}) {
        rate = 0;
        next::ext.glShadingRateEXT = [](GLenum value) { rate = value; };
        draw ? mGame.glDrawArrays(1, 2, 3) : mGame.glDrawElements(1, 2, 3, nullptr);
        EXPECT_EQ(rate, GLenum(GL_SHADING_RATE_2X2_PIXELS_EXT));
    }
    mEnableShadingRate = false;
    mEnableAFModify = true;
    mTargetAFValue = 2;
    EXPECT_THAT(seen([&] { mGame.glTexParameteri(1, GL_TEXTURE_MAX_ANISOTROPY_EXT, 16); }),
                ElementsAre(call("glTexParameteri", 1, GL_TEXTURE_MAX_ANISOTROPY_EXT, 2)));
    mEnableAFModify = false;
    mEnableYSSceneRecognize = true;
    mSceneRecognizer = new SceneRecognizer;
    EXPECT_EQ(seen([&] { mGame.glBindTexture(1, 2); }).size(), 3u); // two questions about what was bound before
    mEnableYSSceneRecognize = false;
    mEnableHkrpgSceneRecognize = true;
    mGame.glLabelObjectEXT(GL_TEXTURE, 5, 0, "Minimap_Chap02_ADV_City_BackGround");
    mGame.glLabelObjectEXT(GL_TEXTURE, 6, 0, "AvatarIcon");
    mGame.glBindTexture(GL_TEXTURE_2D, 5);
    mGame.glBindTexture(GL_TEXTURE_2D, 6);
    LogCapture log;
    mPlatform.eglSwapBuffers(nullptr, nullptr);
    EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "recognizeHkrpgScene 1"));
    mEnableHkrpgSceneRecognize = false;
}

// Catches a swap whose steps come in another order, and a second swap that goes through a hook.
TEST_F(LegacyHooks, SwapKeepsTheFrameAroundTheRealSwap) {
    mDFIInterval = 1;
    mDriver->answer<&platform_impl_t::eglQuerySurface>([](EGLDisplay, EGLSurface, EGLint, EGLint* value) {
        *value = 8;
        return EGLBoolean(EGL_TRUE);
    });
    const auto steps = [&](auto swap) {
        mDFITimestamp = 0;
        mDriver->forget();
        swap();
        std::string found;
        for (const std::string& made : mDriver->calls()) {
            found += made.find("glBlitFramebuffer") == 0 ? "blit " : "";
            found += made.find("platform.eglSwapBuffers") == 0 ? "swap " : "";
        }
        return found;
    };
    EXPECT_EQ(steps([&] { mPlatform.eglSwapBuffers(nullptr, nullptr); }), "blit swap blit swap ");
    installOrvelSGAMEHooks(mDriver->connection());
    gSwapbuffers = next::platform.eglSwapBuffers;
    EXPECT_EQ(steps([&] { mPlatform.eglSwapBuffers(nullptr, nullptr); }), "blit swap blit swap ");
}
