#include "AllocationCounter.h"
#include "TestProcessor.h"
#include "app/OrvelSwapHooks.h"

#include <gtest/gtest.h>

#include <mutex>

using namespace android::orvel;

// Catches memory or a lock that is asked for on the way of a call through hooks and chains, or past them.
TEST(HookSteadyState, CallsAllocateAndLockNothing) {
    next::gl.glDrawArrays = [](GLenum, GLint, GLsizei) {};
    next::gl.glCreateShader = [](GLenum) { return GLuint(1); };
    next::platform.eglSwapBuffers = [](EGLDisplay, EGLSurface) { return EGLBoolean(EGL_TRUE); };
    const auto playFrame = [] {
        DrawHook::GlDrawArrays(GL_TRIANGLES, 0, 3);
        app::PlatSwapBuffersHooked(nullptr, nullptr);
    };
    const auto playFrames = [&] {
        playFrame(); // the first one makes singletons
        const size_t allocations = allocationsSoFar();
        const size_t locks = locksSoFar();
        for (int frame = 0; frame < 1000; ++frame) {
            playFrame();
        }
        EXPECT_EQ(allocationsSoFar(), allocations);
        EXPECT_EQ(locksSoFar(), locks);
    };
    playFrames(); // without a context
    const CurrentProcessor processor;
    for (const uint32_t id : {1, 2}) {
        auto* added = new TestModule(processor.get(), id);
        added->mNotes = false;
        processor->RegisterModule(added);
    }
    playFrames();
    const size_t before = locksSoFar(); // and the counters count
    std::mutex mutex;
    const std::lock_guard lock(mutex);
    EXPECT_EQ(locksSoFar(), before + 1);
}
