#include "AllocationCounter.h"
#include "FakeClock.h"
#include "TestRoot.h"
#include "legacy/FrameCapture.h"
#include "legacy/HkrpgScenes.h"
#include "legacy/OrvelDRR.h"
#include "legacy/OrvelSRControl.h"
#include "legacy/SceneRecognizer.h"
#include "loader/OrvelLegacyHooks.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <gtest/gtest.h>

using namespace android;
using namespace com::velmor::ravelo;

namespace {

class SteadyState : public testing::Test {
protected:
    void install() {
        connection.hooks[egl_connection_t::GLESv2_INDEX] = &game;
        connection.platform.eglSwapBuffers = [](EGLDisplay, EGLSurface) { return EGLBoolean(EGL_TRUE); };
        orvel::next::InitNextFunctions(&connection);
        installVoHooks(&connection);
    }
    template <typename Frame>
    void expectNoAllocations(Frame playFrame) {
        const size_t before = allocationsSoFar();
        for (int frame = 0; frame < 100; ++frame) {
            playFrame();
        }
        EXPECT_EQ(allocationsSoFar(), before);
    }

    FakeClock clock;
    gl_hooks_t game{}; // a driver that has nothing: no call costs memory there
    egl_connection_t connection{};
};

} // namespace

// Catches memory that is asked for in every frame, on the draw path or where the watched file is read.
TEST_F(SteadyState, FramesAllocateNothing) {
    const TestRoot root;
    game.gl.glGenTextures = [](GLsizei, GLuint* name) { // but names, and an answer to what is bound
        static GLuint next = 100;
        *name = next++;
    };
    game.gl.glGetIntegerv = [](GLenum, GLint* value) {
        static GLint turn = 0;
        *value = 1 + turn++ % 8;
    };
    install();
    constexpr TEX_SIZE kBase{1920, 1080};
    orvel::OrvelDRR drr(true, false, "com.miHoYo.hkrpg", 10, {kBase}, {TEX_SIZE{960, 540}}, {});
    mOrvelDRR = &drr;
    mEnableDynamicResolution = true;
    root.write("/data/system/mcd/dr", "com.miHoYo.hkrpg 960 540\n");

    const auto playFrame = [&] {
        for (GLuint texture = 1; texture <= 8; ++texture) {
            game.gl.glActiveTexture(GL_TEXTURE0);
            game.gl.glBindTexture(GL_TEXTURE_2D, texture);
            game.gl.glBindFramebuffer(GL_FRAMEBUFFER, texture);
            game.gl.glUseProgram(texture);
        }
        const GLfloat screen[4] = {1920, 1080, 1 + 1 / 1920.0f, 1 + 1 / 1080.0f};
        game.gl.glUniform4fv(0, 1, screen);
        game.gl.glViewport(0, 0, 1920, 1080);
        game.gl.glScissor(0, 0, 1920, 1080);
        game.gl.glBlitFramebuffer(0, 0, 1920, 1080, 0, 0, 1920, 1080, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        game.gl.glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr);
        clock.advanceMillis(16);
        connection.platform.eglSwapBuffers(nullptr, nullptr);
    };
    for (GLuint texture = 1; texture <= 8; ++texture) {
        game.gl.glBindTexture(GL_TEXTURE_2D, texture);
        game.gl.glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, kBase.width, kBase.height);
        game.gl.glBindFramebuffer(GL_FRAMEBUFFER, texture);
        game.gl.glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    }
    playFrame(); // the switch is in here, and in the next each replacement is rebound once
    playFrame();
    TEX_SIZE size = kBase;
    drrModifySizeParams(size.width, size.height);
    ASSERT_EQ(size, (TEX_SIZE{960, 540}));
    expectNoAllocations(playFrame);
    mEnableDynamicResolution = false;
    mOrvelDRR = nullptr;
}

int sPasses = 0;

// Catches memory that is asked for by a recogniser, a rewritten size, a repeated frame or an upscaled one.
TEST_F(SteadyState, RecognitionAndRewritingAllocateNothing) {
    const TestRoot root;
    root.write("/data/system/mcd/dfi", "game 16\n");
    root.write("/data/system/mcd/sr", "game 1\n");
    orvel::OrvelSettings& settings = orvel::OrvelSettings::getInstance();
    settings.mPackageName = "com.example.game";
    settings.mPrefs = new OrvelPrefs;
    settings.mPrefs->mDynamicDFIEnabled = true;
    settings.mPrefs->mSRSizes = {TEX_SIZE{64, 64}, TEX_SIZE{128, 128}};
    orvel::OrvelSRControl::getInstance().initSuperResolutionConfig();
    game.gl.glGetIntegerv = [](GLenum, GLint* value) { *value = 0; };
    game.gl.glGetTexLevelParameteriv = [](GLenum, GLint, GLenum, GLint* value) { *value = 64; };
    game.gl.glDrawArrays = [](GLenum, GLint, GLsizei) { ++sPasses; };
    connection.platform.eglQuerySurface = [](EGLDisplay, EGLSurface, EGLint, EGLint* value) {
        *value = 64;
        return EGLBoolean(EGL_TRUE);
    };
    install();
    for (bool* feature : {&mEnableYSSceneRecognize, &mEnableYSTransferRecognize, &mEnableYSLaunchRecognize,
                          &mEnableHPTransferRecognize, &mEnableHkrpgSceneRecognize, &mEnableScaleResolutionSize}) {
        *feature = true;
    }
    mSceneRecognizer = new SceneRecognizer;
    mTargetTexWidthYuanshen80 = 800;
    mDeviceAdaptConfigMap = {{TEX_SIZE_POST_PROCESS_LOW, {{1296, 582}, {1152, 518}}}};
    mPostProcessLowParamsMap = {{1296, std::vector<float>(16, 1.0f)}, {1152, std::vector<float>(16, 2.0f)}};
    game.gl.glLabelObjectEXT(GL_PROGRAM_OBJECT_EXT, 0, 0, "Hidden/PostProcessing/Copy");
    game.gl.glLabelObjectEXT(GL_TEXTURE, 1, 0, "Minimap_Chap02_ADV_City_BackGround");
    game.gl.glLabelObjectEXT(GL_TEXTURE, 2, 0, "AvatarIcon");
    const auto playFrame = [&] {
        for (const GLsizei count : {6, 108, 33, 6, 6, 6, 421, 54}) {
            game.gl.glClear(GL_COLOR_BUFFER_BIT);
            game.gl.glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_SHORT, nullptr);
        }
        game.gl.glViewport(0, 0, 1296, 582);
        game.gl.glScissor(0, 0, 1152, 518);
        game.gl.glBindTexture(GL_TEXTURE_2D, 1);
        game.gl.glBindTexture(GL_TEXTURE_2D, 2);
        clock.advanceMillis(16);
        connection.platform.eglSwapBuffers(nullptr, nullptr);
    };
    for (int frame = 0; frame < 60; ++frame) { // the rate is measured, the files are read, all copies are made
        playFrame();
    }
    ASSERT_EQ(mPostprocessLowParam.size(), 16u);
    ASSERT_EQ(mLastHkrpgScene, 1);
    ASSERT_EQ(mDFIInterval, 16);
    ASSERT_GT(sPasses, 0);
    expectNoAllocations(playFrame);
    mSceneRecognizer = nullptr;
}
