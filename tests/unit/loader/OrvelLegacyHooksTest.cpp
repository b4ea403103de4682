#include "loader/OrvelLegacyHooks.h"

#include "EveryEntry.h"
#include "RecordingDriver.h"
#include "legacy/FrameCapture.h"
#include "legacy/HkrpgScenes.h"
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

// Catches a swallowed call, swapped arguments, an extra driver call of a feature that has nothing to do, and a hook
// that forwards to the hooked table (which would never return): before the hooks' gates and behind them.
TEST_F(LegacyHooks, MakeExactlyOneCallWhereNothingIsToBeChanged) {
    int hooked = 0;
    for (const bool dynamicResolution : {false, true}) {
        for (const bool others : {false, true}) {
            mEnableDynamicResolution = dynamicResolution;
            switchOn(others);
            for (const Entry& entry : kEntries) {
                if (entry.isHooked(mGame)) {
                    ++hooked;
                    mDriver->forget();
                    const std::string made = entry.call(mGame);
                    EXPECT_THAT(mDriver->calls(), ElementsAre(made));
                }
            }
        }
    }
    EXPECT_EQ(hooked, 4 * 22);
}

// Catches a game's array that is written or passed where a copy belongs, and a copy of a count that is not handled.
TEST_F(LegacyHooks, UniformsPassACopyOnlyWhereTheyMayBeRewritten) {
    const GLfloat vectors[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    const GLfloat* arrived = nullptr;
    GLfloat values[8];
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
        mGame.glUniform4fv(7, 2, vectors);
        EXPECT_EQ(arrived, vectors);
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
    const GLchar* const unterminated = new GLchar[4]{'a', 'b', 'c', 'd'}; // the address sanitizer stands behind it
    const std::string longText(1000, 'x');
    const std::pair<GLsizei, const GLchar*> labels[] = {{4, unterminated}, {1000, longText.c_str()}, {0, nullptr}};
    for (const auto& [length, text] : labels) {
        mDriver->forget();
        mGame.glLabelObjectEXT(GL_TEXTURE, 1, length, text);
        EXPECT_THAT(mDriver->calls(), ElementsAre(call("glLabelObjectEXT", GL_TEXTURE, 1, length, text)));
    }
    delete[] unterminated;
}

// Catches a cap whose switch does not open the gate of its hook.
TEST_F(LegacyHooks, AnisotropyIsCapped) {
    mEnableAFModify = true;
    mTargetAFValue = 2;
    mGame.glTexParameteri(1, GL_TEXTURE_MAX_ANISOTROPY_EXT, 16);
    EXPECT_THAT(mDriver->calls(), ElementsAre(call("glTexParameteri", 1, GL_TEXTURE_MAX_ANISOTROPY_EXT, 2)));
}

// Catches a swap whose steps come in another order, and a second swap that goes through a hook.
TEST_F(LegacyHooks, SwapKeepsTheFrameAroundTheRealSwap) {
    mDFIInterval = 1;
    mDriver->answer<&platform_impl_t::eglQuerySurface>([](EGLDisplay, EGLSurface, EGLint, EGLint* value) {
        *value = 8;
        return EGLBoolean(EGL_TRUE);
    });
    class Noting : public SceneRecognizer {
        void recognizeHkrpgScene(int32_t) override { next::gl.glFinish(); } // to be seen among the driver's calls
    };
    mSceneRecognizer = new Noting;
    mEnableHkrpgSceneRecognize = true;
    mLastHkrpgScene = HKRPG_SCENE_CITY; // is over with this frame
    const auto steps = [&] {
        mDFITimestamp = 0;
        mDriver->forget();
        mPlatform.eglSwapBuffers(nullptr, nullptr);
        std::string found;
        for (const std::string& made : mDriver->callsOf({"glBlitFramebuffer", "glFinish", "platform.eglSwapBuffers"})) {
            found += made[0] == 'p' ? "swap " : made[2] == 'B' ? "blit " : "scene ";
        }
        return found;
    };
    EXPECT_EQ(steps(), "blit swap scene blit swap ");
    installOrvelSGAMEHooks(mDriver->connection());
    gSwapbuffers = next::platform.eglSwapBuffers;
    EXPECT_EQ(steps(), "blit swap blit swap ");
}
