#include "LogCapture.h"
#include "TestProcessor.h"

#include "app/OrvelSwapHooks.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

using namespace android;
using namespace android::orvel;
using namespace android::orvel::app;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> takeEvents() { return std::exchange(sEvents, {}); }

/** Calls a node's hook with zeros. */
template <typename Functor, typename Entry, typename R, typename... Args>
R run(const module::GlNode<Functor, Entry>& node, R (*)(module::OrvelModuleBase*, Args...)) {
    return node.hook(node.owner, Args{}...);
}

// Catches an entry that is missing, whose chain ends at another one's driver call, or whose dummies reach the driver.
TEST(HookableGl, EveryChainEndsAtItsOwnEntry) {
    const auto driver = RecordingDriver::installed();
    int entries = 0;
#define ENDS(Xxx)                                                                                                      \
    run(module::sPreDummyGl##Xxx, module::sPreDummyGl##Xxx.hook);                                                      \
    run(module::sPostDummyGl##Xxx, module::sPostDummyGl##Xxx.hook);                                                    \
    EXPECT_THAT(driver->calls(), IsEmpty()) << #Xxx;                                                                   \
    run(module::sDriverGl##Xxx, module::sDriverGl##Xxx.hook);                                                          \
    EXPECT_THAT(driver->calls(), ElementsAre(testing::StartsWith("gl" #Xxx "(")));                                     \
    driver->forget();                                                                                                  \
    ++entries;
    ORVEL_HOOKABLE_GL(ENDS)
#undef ENDS
    EXPECT_EQ(entries, 56);
}

// Catches a hook that swallows calls or results of threads without a processor.
TEST(GlobalHooks, ThreadsWithoutAProcessorReachTheDriver) {
    const auto driver = RecordingDriver::installed();
    driver->answer<&next::GlTable::glCreateShader>([](GLenum) { return 7; });
    driver->answer<&platform_impl_t::eglSwapBuffers>([](EGLDisplay, EGLSurface) { return 5u; });
    driver->answer<&platform_impl_t::eglSwapBuffersWithDamageKHR>(
        [](EGLDisplay, EGLSurface, const EGLint*, EGLint) { return 6u; });
    OrvelRenderContext withoutProcessor(driver.get());
    const EGLint rects[4] = {1, 2, 3, 4};
    for (OrvelRenderContext* slot : {static_cast<OrvelRenderContext*>(nullptr), &withoutProcessor}) {
        gContextTls = slot;
        driver->forget();
        DrawHook::GlDrawArrays(GL_TRIANGLES, 1, 2);
        EXPECT_EQ(ShaderHook::GlCreateShader(GL_VERTEX_SHADER), 7u);
        EXPECT_EQ(PlatSwapBuffersHooked(nullptr, nullptr), 5u);
        EXPECT_EQ(PlatSwapBuffersWithDamageKHRHooked(nullptr, nullptr, rects, 1), 6u);
        EXPECT_THAT(driver->calls(),
                    ElementsAre(call("glDrawArrays", GL_TRIANGLES, 1, 2), call("glCreateShader", GL_VERTEX_SHADER),
                                call("platform.eglSwapBuffers", nullptr, nullptr),
                                call("platform.eglSwapBuffersWithDamageKHR", nullptr, nullptr, rects, 1)));
    }
    gContextTls = nullptr;
}

// Catches a wrong order, a broken link after removal, arguments or results that get lost, a driver called twice.
TEST(HookChain, ModulesRunInOrderAroundTheDriver) {
    const auto driver = RecordingDriver::installed();
    driver->answer<&next::GlTable::glCreateShader>([](GLenum) { return 7; });
    const CurrentProcessor processor;
    const auto draw = [&] {
        driver->forget();
        DrawHook::GlDrawArrays(GL_TRIANGLES, 0, 3);
        return driver->calls();
    };
    EXPECT_THAT(draw(), ElementsAre(call("glDrawArrays", GL_TRIANGLES, 0, 3)));

    auto* late = new TestModule(processor.get(), 9, 1);
    auto* first = new TestModule(processor.get(), 1);
    auto* second = new TestModule(processor.get(), 2);
    for (module::OrvelModuleBase* added : {late, first, second, first, static_cast<TestModule*>(nullptr)}) {
        processor->RegisterModule(added);
    }
    EXPECT_THAT(takeEvents(), ElementsAre("9 registered", "1 registered", "2 registered"));
    EXPECT_THAT(draw(), ElementsAre(call("glDrawArrays", GL_TRIANGLES, 0, 6)));
    EXPECT_THAT(takeEvents(), ElementsAre("1 draws", "2 draws", "9 draws", "1 drew", "2 drew", "9 drew"));
    EXPECT_EQ(ShaderHook::GlCreateShader(GL_VERTEX_SHADER), 7u);
    EXPECT_THAT(takeEvents(), ElementsAre("1 shader 7", "2 shader 7", "9 shader 7"));

    second->mSwallows = true;
    EXPECT_THAT(draw(), IsEmpty());
    second->mSwallows = false;
    EXPECT_EQ(processor->GetGLModule(2), second);
    EXPECT_EQ(processor->GetGLModule(3), nullptr);
    first->UnregisterModuleFunctors(); // a node can go
    first->UnregisterModuleFunctors(); // is not there to go again
    first->RegisterModuleFunctors();   // and can come back, behind its equals
    takeEvents();
    EXPECT_THAT(draw(), ElementsAre(call("glDrawArrays", GL_TRIANGLES, 0, 6)));
    EXPECT_THAT(takeEvents(), ElementsAre("2 draws", "1 draws", "9 draws", "2 drew", "1 drew", "9 drew"));

    processor->UnRegisterModule(second);
    processor->UnRegisterModule(nullptr);
    EXPECT_THAT(takeEvents(), ElementsAre("2 unregistered", "2 released"));
    EXPECT_THAT(draw(), ElementsAre(call("glDrawArrays", GL_TRIANGLES, 0, 5)));
    takeEvents();
    processor->OnEnd();
    EXPECT_THAT(takeEvents(), ElementsAre("1 unregistered", "1 released", "9 unregistered", "9 released"));
    EXPECT_THAT(draw(), ElementsAre(call("glDrawArrays", GL_TRIANGLES, 0, 3)));
}

// Catches a frame's end on the wrong side of the swap, a frame counted at the wrong time, a result that is not the
// driver's, and what a module throws reaching the game or another module.
TEST(SwapHooks, FrameEndsAroundTheSwap) {
    const auto driver = RecordingDriver::installed();
    EGLBoolean answer = EGL_TRUE;
    driver->answer<&platform_impl_t::eglSwapBuffers>([&](EGLDisplay, EGLSurface) {
        sEvents.push_back("swap");
        return answer;
    });
    const CurrentProcessor processor;
    processor->RegisterModule(new TestModule(processor.get(), 1));
    processor->RegisterModule(new TestModule(processor.get(), 2));
    takeEvents();
    EXPECT_EQ(PlatSwapBuffersHooked(nullptr, nullptr), EGLBoolean(EGL_TRUE));
    EXPECT_THAT(takeEvents(), ElementsAre("1 frame 0", "2 frame 0", "swap", "1 after frame 0", "2 after frame 0"));
    EXPECT_EQ(processor->GetCurrentFrameId(), 1u);
    answer = EGL_FALSE;
    EXPECT_EQ(PlatSwapBuffersHooked(nullptr, nullptr), EGLBoolean(EGL_FALSE));
    EXPECT_EQ(processor->GetCurrentFrameId(), 2u);
    next::platform.eglSwapBuffersWithDamageKHR = nullptr; // a driver without it: the damage is a hint
    takeEvents();
    PlatSwapBuffersWithDamageKHRHooked(nullptr, nullptr, nullptr, 0);
    EXPECT_THAT(takeEvents(), testing::Contains("swap"));
    EXPECT_EQ(processor->GetCurrentFrameId(), 3u);
    driver->answer<&platform_impl_t::eglSwapBuffersWithDamageKHR>(nullptr);

    struct Throwing : TestModule {
        using TestModule::TestModule;
        void FrameEnd() override { throw std::runtime_error("broken"); }
        void PostFrameEnd() override { throw std::runtime_error("broken after the swap"); }
    };
    processor->RegisterModule(new Throwing(processor.get(), 4));
    processor->RegisterModule(new TestModule(processor.get(), 8));
    takeEvents();
    const LogCapture log;
    EXPECT_NO_THROW(PlatSwapBuffersHooked(nullptr, nullptr));
    EXPECT_THAT(takeEvents(), ElementsAre("1 frame 3", "2 frame 3", "8 frame 3", "swap", "1 after frame 3",
                                          "2 after frame 3", "8 after frame 3"));
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR), ElementsAre("end of frame of module 4 failed: broken",
                                                          "end of frame of module 4 failed: broken after the swap"));
    EXPECT_EQ(processor->GetCurrentFrameId(), 4u);
    driver->answer<&platform_impl_t::eglSwapBuffers>([](EGLDisplay, EGLSurface) {
        gContextTls = nullptr; // as when a callback of the driver destroys the context
        return EGLBoolean(EGL_TRUE);
    });
    PlatSwapBuffersHooked(nullptr, nullptr);
    EXPECT_EQ(processor->GetCurrentFrameId(), 4u) << "may be gone by then";
    processor->OnEnd();
}

} // namespace
