#include "AllocationCounter.h"
#include "SGameShadingKeys.h"
#include "app/FrameworkProcess.h"
#include "app/OrvelContextManager.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelRenderContext.h"
#include "next/EffectGame.h"
#include "next/OrvelNext.h"

#include <gtest/gtest.h>

#include <cstring>
#include <mutex>

using namespace android;
using namespace android::orvel;

namespace {

constexpr char kPayload[] = "lobby:lobby\\d;battle:b[a-z]*;battle-UI:ui#clear.*#2";
constexpr int kGreen = 1, kLut = 7; // filter types
constexpr GLuint kLobby = 1, kCrossHair = 8;

int sFiltersDrawn = 0, sRates = 0;

/** A driver that takes every shader and image, has every capability on, and otherwise does nothing. */
void takeFilters(gl_hooks_t& table) {
    auto& gl = table.gl;
    gl.glCreateProgram = [] { return GLuint{1}; };
    gl.glCheckFramebufferStatus = [](GLenum) -> GLenum { return GL_FRAMEBUFFER_COMPLETE; };
    gl.glGetShaderiv = gl.glGetProgramiv = [](GLuint, GLenum, GLint* value) { *value = 1; };
    gl.glGetProgramInterfaceiv = [](GLuint, GLenum, GLenum, GLint* count) { *count = 2; };
    gl.glGetProgramResourceiv = [](GLuint, GLenum, GLuint, GLsizei, const GLenum*, GLsizei, GLsizei*, GLint* values) {
        values[0] = 7; // the length of the name
    };
    gl.glGetProgramResourceName = [](GLuint, GLenum, GLuint index, GLsizei, GLsizei*, GLchar* name) {
        std::strcpy(name, index == 0 ? "param" : "lutTex");
    };
    gl.glMapBufferRange = [](GLenum, GLintptr, GLsizeiptr, GLbitfield) -> void* {
        static char memory[1 << 16]; // for an image or a template of rates
        return memory;
    };
    gl.glGetTexParameteriv = [](GLenum, GLenum, GLint* value) { *value = GL_TRUE; };
    gl.glGetIntegerv = [](GLenum name, GLint* value) { *value = name == GL_MAX_TEXTURE_SIZE ? 4096 : 0; };
    gl.glGetUniformLocation = [](GLuint, const GLchar*) { return 9; };
    gl.glIsEnabled = [](GLenum) -> GLboolean { return GL_TRUE; };
    gl.glDrawArrays = [](GLenum, GLint, GLsizei count) { sFiltersDrawn += count == 3; };
}

class GameSteadyState : public testing::TestWithParam<OrvelApplicationType> {
protected:
    void SetUp() override {
        takeFilters(mTable);
        mRoot.write("/vendor/odm/etc/game/effect/saibopengke.png", pngFile(4, 4));
        mConnection.hooks[egl_connection_t::GLESv2_INDEX] = &mTable;
        mConnection.platform.eglSwapBuffers = [](EGLDisplay, EGLSurface) { return EGLBoolean(EGL_TRUE); };
        mConnection.platform.eglGetCurrentContext = []() -> EGLContext { return EGL_NO_CONTEXT; };
        mConnection.platform.glGetString = [](GLenum) -> const GLubyte* { return nullptr; };
        auto& data = beFramework(GetParam(), isSGame() ? 1 | 2 : 2);
        Json::Value json = shadingKeys({{"vrs_MotionDetection", "1"}});
        json["effect_Binary"] = "0;0;0;1;skip.*;result.*";
        json["effect_Types"] = "1;1;1;1;7";
        data.ParsePayloadData(kPayload);
        for (const uint32_t id : data.GetModuleIds()) {
            data.InitProcessorModuleData(id, json);
        }
        next::InitNextFunctions(&mConnection);
        next::ext.glShadingRateEXT = [](GLenum) { ++sRates; };
        app::OrvelProcessorBase::RegisterGlobalHooks(&mConnection);
        mContext.InitApplicationProcessor();
        ASSERT_NE(mContext.mProcessor->GetGLModule(2), nullptr);
        gContextTls = &mContext;
        auto& info = GameInfoMonitor::getInstance();
        info.setPackageName("game");
        info.parseGameVrsLevel(1);
        info.parseGamePictureInfo(8, 1);
        info.parseGamePictureInfo(10, 2);
    }
    void TearDown() override { gContextTls = nullptr; }

    void report(int scene, int filter) {
        GameInfoMonitor::getInstance().parseGameSceneId("game", scene);
        GameInfoMonitor::getInstance().parseFilterConfig("game", filter, 100, 1);
    }
    void swap() { mConnection.platform.eglSwapBuffers(nullptr, nullptr); }
    void draw() {
        mGl.glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr);
        mGl.glDrawElementsInstanced(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr, 1);
    }
    bool isSGame() const { return GetParam() == APP_TYPE_SGAME; }

    /** A frame with all that the game's modules look at. */
    void playBusyFrame() {
        const char* const labels[] = {"lobby1", "battle", "ui", "skip1", "result", "LoadingUI_Atlas", "other"};
        for (GLuint texture = kLobby; texture <= std::size(labels); ++texture) {
            mGl.glLabelObjectEXT(GL_TEXTURE, texture, 0, labels[texture - 1]);
            mGl.glBindTexture(GL_TEXTURE_2D, texture);
        }
        mGl.glLabelObjectEXT(GL_TEXTURE, kCrossHair, 0, "T_CrossHairNormal");
        mGl.glLabelObjectEXT(GL_PROGRAM_OBJECT_EXT, 1, 0, "clear1");
        mGl.glBindFramebuffer(GL_FRAMEBUFFER, 0);
        draw(), draw(), draw();
        if (isSGame()) {
            mGl.glUseProgram(1);
            mGl.glColorMask(0, 0, 0, 0);
            mGl.glDrawArrays(GL_TRIANGLES, 0, 6);
            mGl.glColorMask(1, 1, 1, 1);
            mGl.glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
            mGl.glDrawArraysInstanced(GL_TRIANGLES, 0, 6, 1);
        } else {
            mGl.glEnable(GL_BLEND);
            mGl.glDisable(GL_DEPTH_TEST);
            mGl.glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ZERO);
        }
        swap();
    }
    /** A camera that moves, and draws with rates of their own. */
    void drawShaded() {
        const char* const labels[] = {"pvp_melee", "f_hill", "floor", "another"};
        ++mMatrix[12];
        mGl.glUseProgram(5);
        mGl.glUniform4fv(9, 4, mMatrix);
        for (GLuint i = 0; i < std::size(labels); ++i) {
            mGl.glLabelObjectEXT(GL_TEXTURE, 20 + i, 0, labels[i]);
            mGl.glBindTexture(GL_TEXTURE_2D, 20 + i);
            draw();
        }
    }
    /** A frame of a match: scene, what begins the interface, interface. */
    void playFilteredFrame() {
        if (isSGame()) {
            drawShaded();
            mGl.glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        } else {
            draw(), draw();
            mGl.glBindTexture(GL_TEXTURE_2D, kCrossHair);
        }
        draw();
        swap();
    }
    /** Plays frames when they are known. @return how many filters were drawn in the 500 that must cost nothing */
    template <typename Frame>
    int playSteadily(Frame frame) {
        for (int i = 0; i < 61; ++i) { // to the second time that the settings are read
            frame();
        }
        const size_t allocations = allocationsSoFar(), locks = locksSoFar();
        const int drawn = sFiltersDrawn;
        for (int i = 0; i < 500; ++i) {
            frame();
        }
        EXPECT_EQ(allocationsSoFar(), allocations);
        EXPECT_EQ(locksSoFar(), locks);
        return sFiltersDrawn - drawn;
    }

    const TestRoot mRoot;
    gl_hooks_t mTable{};
    const next::GlTable& mGl = mTable.gl;
    egl_connection_t mConnection{};
    OrvelRenderContext mContext{&mConnection};
    GLfloat mMatrix[16] = {};
};

// Catches memory or a lock that is asked for in a frame without new labels, with and without a filter or rates in it.
TEST_P(GameSteadyState, AllocatesAndLocksNothing) {
    playSteadily([this] { playBusyFrame(); });
    report(4, kLut);
    mGl.glBindTexture(GL_TEXTURE_2D, kLobby);
    for (int frame = 0; frame < 30; ++frame) { // effects are loaded
        swap();
    }
    for (const int scene : isSGame() ? std::vector{102, 7} : std::vector{6}) {
        for (const int filter : {kGreen, kLut}) {
            report(scene, filter);
            sRates = 0;
            const int drawn = playSteadily([this] { playFilteredFrame(); });
            ASSERT_TRUE(mContext.mProcessor->GetEffectManager()->EnableRender());
            EXPECT_EQ(drawn, 500) << "filter " << filter << " in scene " << scene;
            EXPECT_EQ(sRates > 500, scene == 7) << sRates;
        }
    }
}
// Catches memory or a lock that is asked for by a call of a thread without a context, and counters that do not count.
TEST_P(GameSteadyState, PassingByAllocatesAndLocksNothing) {
    gContextTls = nullptr;
    playSteadily([this] { playFilteredFrame(); });
    const size_t before = locksSoFar();
    std::mutex mutex;
    const std::lock_guard lock(mutex);
    EXPECT_EQ(locksSoFar(), before + 1);
}

// Catches a second lock for making a context current: for the pattern, or for the configuration.
TEST(ContextSteadyState, MakingCurrentTakesOneLock) {
    auto& data = beFramework(APP_TYPE_BILI, kSharedShading);
    data.mainThreadName = "no.*thread";
    auto& manager = OrvelContextManager::GetInstance();
    manager.CreateAndAddRenderContext(&data);
    for (int32_t& mode = data.mainContextMode; mode <= 2; ++mode) {
        manager.MakeCurrentRenderContext(&data); // compiles the pattern
        const size_t before = locksSoFar();
        manager.MakeCurrentRenderContext(&data);
        EXPECT_EQ(locksSoFar(), before + 1) << "mode " << mode;
    }
}

INSTANTIATE_TEST_SUITE_P(Games, GameSteadyState, testing::Values(APP_TYPE_SGAME, APP_TYPE_PUBG));

} // namespace
