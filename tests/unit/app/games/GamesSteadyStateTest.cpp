#include "AllocationCounter.h"
#include "app/FrameworkProcess.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelRenderContext.h"
#include "next/OrvelNext.h"

#include <gtest/gtest.h>
#include <json/reader.h>

#include <sstream>

using namespace android;
using namespace android::orvel;

namespace {

constexpr char kFilter[] = R"({"effect_Binary":"0;0;0;1;skip.*;result.*"})";
constexpr char kPayload[] = "lobby:lobby\\d;battle:b[a-z]*;battle-UI:ui#clear.*#2";

class GameSteadyState : public testing::TestWithParam<OrvelApplicationType> {};

// Catches memory or a lock that is asked for in a frame without new labels.
TEST_P(GameSteadyState, AllocatesAndLocksNothing) {
    gl_hooks_t table{};
    egl_connection_t connection{};
    connection.hooks[egl_connection_t::GLESv2_INDEX] = &table;
    connection.platform.eglSwapBuffers = [](EGLDisplay, EGLSurface) { return EGLBoolean(EGL_TRUE); };
    connection.platform.eglGetCurrentContext = []() -> EGLContext { return EGL_NO_CONTEXT; };
    connection.platform.glGetString = [](GLenum) -> const GLubyte* { return nullptr; };
    auto& data = beFramework(GetParam(), 2);
    Json::Value json;
    std::istringstream(kFilter) >> json;
    data.ParsePayloadData(kPayload);
    data.InitProcessorModuleData(2, json);
    next::InitNextFunctions(&connection); // a driver that has nothing: each entry does nothing
    app::OrvelProcessorBase::RegisterGlobalHooks(&connection);
    OrvelRenderContext context(&connection);
    context.InitApplicationProcessor();
    ASSERT_NE(context.mProcessor->GetGLModule(2), nullptr);
    gContextTls = &context;
    const auto playFrame = [&] {
        const next::GlTable& gl = table.gl;
        const char* const labels[] = {"lobby1", "battle", "ui", "skip1", "result", "LoadingUI_Atlas", "other"};
        for (GLuint texture = 1; texture <= std::size(labels); ++texture) {
            gl.glLabelObjectEXT(GL_TEXTURE, texture, 0, labels[texture - 1]);
            gl.glBindTexture(GL_TEXTURE_2D, texture);
        }
        gl.glLabelObjectEXT(GL_PROGRAM_OBJECT_EXT, 1, 0, "clear1");
        gl.glBindFramebuffer(GL_FRAMEBUFFER, 0);
        for (int draw = 0; draw < 3; ++draw) {
            gl.glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr);
            gl.glDrawElementsInstanced(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr, 1);
        }
        if (GetParam() == APP_TYPE_SGAME) {
            gl.glUseProgram(1);
            gl.glColorMask(0, 0, 0, 0);
            gl.glDrawArrays(GL_TRIANGLES, 0, 6);
            gl.glColorMask(1, 1, 1, 1);
            gl.glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
            gl.glDrawArraysInstanced(GL_TRIANGLES, 0, 6, 1);
        } else {
            gl.glEnable(GL_BLEND);
            gl.glDisable(GL_DEPTH_TEST);
            gl.glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ZERO);
        }
        connection.platform.eglSwapBuffers(nullptr, nullptr);
    };
    for (int frame = 0; frame < 20; ++frame) { // the first one sees new labels, then effects are loaded
        playFrame();
    }
    const size_t allocations = allocationsSoFar();
    const size_t locks = locksSoFar();
    for (int frame = 0; frame < 1000; ++frame) {
        playFrame();
    }
    EXPECT_EQ(allocationsSoFar(), allocations);
    EXPECT_EQ(locksSoFar(), locks);
    gContextTls = nullptr;
}
INSTANTIATE_TEST_SUITE_P(Games, GameSteadyState, testing::Values(APP_TYPE_SGAME, APP_TYPE_PUBG));

} // namespace
