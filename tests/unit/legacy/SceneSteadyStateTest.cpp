#include "AllocationCounter.h"
#include "FakeClock.h"
#include "legacy/FrameCapture.h"
#include "legacy/HkrpgScenes.h"
#include "legacy/SceneRecognizer.h"
#include "loader/OrvelLegacyHooks.h"
#include "next/OrvelNext.h"

#include <gtest/gtest.h>

using namespace android;
using namespace com::velmor::ravelo;

// Catches memory that is asked for by a recogniser, a rewritten size or a repeated frame.
TEST(SteadyState, RecognitionAndRewritingAllocateNothing) {
    FakeClock clock;
    gl_hooks_t game{}; // a driver that has nothing: no call costs memory there
    egl_connection_t connection{};
    connection.hooks[egl_connection_t::GLESv2_INDEX] = &game;
    connection.platform.eglQuerySurface = [](EGLDisplay, EGLSurface, EGLint, EGLint* value) {
        *value = 64;
        return EGLBoolean(EGL_TRUE);
    };
    connection.platform.eglSwapBuffers = [](EGLDisplay, EGLSurface) { return EGLBoolean(EGL_TRUE); };
    orvel::next::InitNextFunctions(&connection);
    installVoHooks(&connection);
    for (bool* feature : {&mEnableYSSceneRecognize, &mEnableYSTransferRecognize, &mEnableYSLaunchRecognize,
                          &mEnableHPTransferRecognize, &mEnableHkrpgSceneRecognize, &mEnableScaleResolutionSize}) {
        *feature = true;
    }
    mSceneRecognizer = new SceneRecognizer;
    mTargetTexWidthYuanshen80 = 800;
    mDeviceAdaptConfigMap = {{TEX_SIZE_POST_PROCESS_LOW, {{1296, 582}, {1152, 518}}}};
    mPostProcessLowParamsMap = {{1296, std::vector<float>(16, 1.0f)}, {1152, std::vector<float>(16, 2.0f)}};
    mDFIInterval = 16;
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
    playFrame(); // the copy of the frame is made in here
    ASSERT_EQ(mPostprocessLowParam.size(), 16u);
    ASSERT_EQ(mLastHkrpgScene, 1);
    const size_t before = allocationsSoFar();
    for (int frame = 0; frame < 100; ++frame) {
        playFrame();
    }
    EXPECT_EQ(allocationsSoFar(), before);
    mSceneRecognizer = nullptr;
}
