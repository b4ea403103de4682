#include "AllocationCounter.h"
#include "FakeClock.h"
#include "TestRoot.h"
#include "legacy/OrvelDRR.h"
#include "loader/OrvelLegacyHooks.h"
#include "next/OrvelNext.h"

#include <gtest/gtest.h>

using namespace android;
using com::velmor::ravelo::TEX_SIZE;

// Catches memory that is asked for in every frame, on the draw path or where the watched file is read.
TEST(SteadyState, FramesAllocateNothing) {
    const TestRoot root;
    FakeClock clock;
    gl_hooks_t game{}; // a driver that has nothing: no call costs memory there
    egl_connection_t connection{};
    connection.hooks[egl_connection_t::GLESv2_INDEX] = &game;
    game.gl.glGenTextures = [](GLsizei, GLuint* name) { // but names, and an answer to what is bound
        static GLuint next = 100;
        *name = next++;
    };
    game.gl.glGetIntegerv = [](GLenum, GLint* value) {
        static GLint turn = 0;
        *value = 1 + turn++ % 8;
    };
    connection.platform.eglSwapBuffers = [](EGLDisplay, EGLSurface) { return EGLBoolean(EGL_TRUE); };
    orvel::next::InitNextFunctions(&connection);
    installVoHooks(&connection);
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
    const size_t before = allocationsSoFar();
    for (int frame = 0; frame < 100; ++frame) {
        playFrame();
    }
    EXPECT_EQ(allocationsSoFar(), before);
    mEnableDynamicResolution = false;
    mOrvelDRR = nullptr;
}
