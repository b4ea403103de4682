#include "AllocationCounter.h"
#include "TestProcessor.h"
#include "app/OrvelSwapHooks.h"

#include <gtest/gtest.h>

using namespace android::orvel;

// Catches memory that is asked for on the way of a call through hooks and chains.
TEST(HookSteadyState, CallsAllocateNothing) {
    next::gl.glDrawArrays = [](GLenum, GLint, GLsizei) {};
    next::gl.glCreateShader = [](GLenum) { return GLuint(1); };
    next::platform.eglSwapBuffers = [](EGLDisplay, EGLSurface) { return EGLBoolean(EGL_TRUE); };
    const CurrentProcessor processor;
    for (const uint32_t id : {1, 2}) {
        auto* added = new TestModule(processor.get(), id);
        added->mNotes = false;
        processor->RegisterModule(added);
    }
    const auto playFrame = [] {
        DrawHook::GlDrawArrays(GL_TRIANGLES, 0, 3);
        app::PlatSwapBuffersHooked(nullptr, nullptr);
    };
    playFrame(); // the first one makes singletons
    const size_t before = allocationsSoFar();
    for (int frame = 0; frame < 1000; ++frame) {
        playFrame();
    }
    EXPECT_EQ(allocationsSoFar(), before);
}
