#include "app/OrvelContextManager.h"

#include "FrameworkProcess.h"
#include "LogCapture.h"
#include "RecordingDriver.h"
#include "app/OrvelModuleBase.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelRenderContext.h"
#include "app/OrvelSwapHooks.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <pthread.h>
#include <thread>

using namespace android;
using namespace android::orvel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void* const kA = reinterpret_cast<void*>(0xa0);
void* const kB = reinterpret_cast<void*>(0xb0);

OrvelContextManager& manager() { return OrvelContextManager::GetInstance(); }

/** @return the EGL context whose render context is current on this thread, or null */
void* current() { return gContextTls ? gContextTls->mContext : nullptr; }

void* afterMakeCurrent(void* context) {
    manager().MakeCurrentRenderContext(context);
    return current();
}

int sReleased = 0;

/** Counts when it goes, with its processor. */
class CountedModule : public app::module::OrvelModuleBase {
public:
    using OrvelModuleBase::OrvelModuleBase;
    ~CountedModule() override { ++sReleased; }
    uint32_t GetModuleId() const override { return 77; }
    void RegisterModuleFunctors() override {}
    void UnregisterModuleFunctors() override {}
};

void countRelease(OrvelRenderContext* context) {
    sReleased = 0;
    context->mProcessor->RegisterModule(new CountedModule(context->mProcessor));
}

/** Does something on a thread of that name, which gives its context back when it ends. */
void onThread(const char* name, const std::function<void()>& work) {
    std::thread([&] {
        pthread_setname_np(pthread_self(), name);
        work();
        manager().MakeCurrentRenderContext(nullptr);
    }).join();
}

// Catches slots shared between threads, a slot that follows an unknown context, one that survives a release.
TEST(ContextManager, ServesEveryContextInModeZero) {
    beFramework(APP_TYPE_BILI, kSharedShading);
    const LogCapture log;
    EXPECT_TRUE(manager().CreateAndAddRenderContext(kA));
    EXPECT_TRUE(manager().CreateAndAddRenderContext(kB));
    EXPECT_EQ(afterMakeCurrent(kA), kA);
    ASSERT_NE(OrvelRenderContextTLS::GetCurProcessor(gContextTls), nullptr);
    EXPECT_EQ(gContextTls->mProcessor->GetProcessorId(), uint32_t(APP_TYPE_BILI));
    EXPECT_NE(gContextTls->mProcessor->GetGLModule(kSharedShading), nullptr);
    onThread("other", [] {
        EXPECT_EQ(current(), nullptr);
        EXPECT_EQ(afterMakeCurrent(kB), kB);
    });
    EXPECT_EQ(current(), kA);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(afterMakeCurrent(reinterpret_cast<void*>(0xc0)), kA);
    EXPECT_THAT(log.texts(ANDROID_LOG_WARN), ElementsAre("unrecognized context pointer: 0xc0"));
    EXPECT_EQ(afterMakeCurrent(nullptr), nullptr);
    EXPECT_FALSE(manager().CreateAndAddRenderContext(nullptr));
    EXPECT_THAT(log.texts(ANDROID_LOG_WARN), testing::Contains("ignore null/invalid context"));

    EXPECT_EQ(afterMakeCurrent(kA), kA);
    manager().EraseRenderContext(kB);
    EXPECT_EQ(current(), kA);
    countRelease(gContextTls);
    EXPECT_TRUE(manager().CreateAndAddRenderContext(kA)); // another one at the same address
    EXPECT_EQ(current(), nullptr);
    EXPECT_EQ(sReleased, 1);
    EXPECT_EQ(afterMakeCurrent(kA), kA);
    countRelease(gContextTls);
    manager().EraseRenderContext(kA);
    EXPECT_EQ(current(), nullptr);
    EXPECT_EQ(sReleased, 1);
    manager().EraseRenderContext(kA);
}

// Catches a lock that waits for itself.
TEST(ContextManager, MayBeCalledFromWithinItsLog) {
    beFramework(APP_TYPE_BILI, kSharedShading);
    static int lines;
    __android_log_set_logger([](const __android_logger_data*, const char*) {
        ++lines;
        manager().CreateAndAddRenderContext(kB);
        manager().MakeCurrentRenderContext(kA);
        manager().UpdateMainRenderContextByPipelineInfo();
        manager().EraseRenderContext(kA);
    });
    manager().CreateAndAddRenderContext(kA);
    EXPECT_EQ(afterMakeCurrent(kA), kA);
    manager().MakeCurrentRenderContext(kB);
    EXPECT_EQ(lines, 1);
    __android_log_set_logger(__android_log_stderr_logger);
    EXPECT_EQ(current(), kA);
    EXPECT_EQ(afterMakeCurrent(nullptr), nullptr);
    manager().EraseRenderContext(kA);
}

// Catches a framework that works for processes without modules, which have no processors either.
TEST(ContextManager, DoesNothingWithoutModules) {
    auto& data = beFramework(APP_TYPE_BILI, kSharedShading);
    EXPECT_TRUE(manager().CreateAndAddRenderContext(kA));
    EXPECT_EQ(afterMakeCurrent(kA), kA);
    data.EraseModuleId(kSharedShading);
    EXPECT_TRUE(manager().CreateAndAddRenderContext(kB));
    EXPECT_EQ(afterMakeCurrent(kB), nullptr);
    manager().EraseRenderContext(kA);
}

// Catches a processor freed under a thread that draws with it, one that becomes the main one although it is over, and a
// new context at the same address that is taken for the old one.
TEST(ContextManager, ParksAContextThatIsCurrentElsewhere) {
    auto& data = beFramework(APP_TYPE_BILI, kSharedShading);
    for (const bool replaced : {false, true}) {
        manager().CreateAndAddRenderContext(kA);
        std::atomic<int> step{0};
        OrvelRenderContext* parked = nullptr;
        std::thread other([&] {
            EXPECT_EQ(afterMakeCurrent(kA), kA);
            parked = gContextTls;
            countRelease(parked);
            step = 1;
            step.notify_all();
            step.wait(1);
            EXPECT_EQ(gContextTls, parked);
            EXPECT_EQ(gContextTls->mProcessor->GetCurrentFrameId(), 0u);
            data.mainContextMode = 2;
            manager().UpdateMainRenderContextByPipelineInfo(); // is over: cannot become the main one
            EXPECT_TRUE(manager().CheckMainRenderContextByPipelineInfo());
            data.mainContextMode = 0;
            EXPECT_EQ(sReleased, 0);
            EXPECT_EQ(afterMakeCurrent(nullptr), nullptr);
            EXPECT_EQ(sReleased, 1);
        });
        step.wait(0);
        if (!replaced) {
            manager().EraseRenderContext(kA);
        }
        manager().CreateAndAddRenderContext(kA);
        EXPECT_EQ(afterMakeCurrent(kA), kA);
        EXPECT_NE(gContextTls, parked);
        step = 2;
        step.notify_all();
        other.join();
        EXPECT_EQ(current(), kA);
        manager().EraseRenderContext(kA);
    }
}

// Catches a search where the whole name must match, a second main context, and a choice that is made again.
TEST(ContextManager, ServesOneContextByThreadName) {
    auto& data = beFramework(APP_TYPE_BILI, kSharedShading);
    data.mainContextMode = 1;
    data.mainThreadName = "Render[A-Z]hread";
    EXPECT_TRUE(manager().CreateAndAddRenderContext(kA));
    onThread("GameThread", [] { EXPECT_EQ(afterMakeCurrent(kA), nullptr); });
    onThread("RenderThread 2", [] { EXPECT_EQ(afterMakeCurrent(kA), nullptr); });
    onThread("RenderThread", [] {
        EXPECT_EQ(afterMakeCurrent(kB), kB);
        EXPECT_EQ(afterMakeCurrent(kA), nullptr);
    });
    EXPECT_EQ(afterMakeCurrent(kB), kB); // whichever thread has the main one
    manager().EraseRenderContext(kB);
    EXPECT_EQ(current(), nullptr);
    onThread("RenderThread", [] { EXPECT_EQ(afterMakeCurrent(kA), nullptr); });
}

// Catches a main context that is chosen without being recognised, twice, or again after it is gone.
TEST(ContextManager, ServesUntilOneContextIsRecognised) {
    const auto driver = RecordingDriver::installed();
    auto& data = beFramework(APP_TYPE_BILI, kSharedShading);
    data.mainContextMode = 2;
    data.mainThreadName = "Worker.*";
    onThread("GameThread", [] {
        EXPECT_EQ(afterMakeCurrent(kA), nullptr);
        manager().UpdateMainRenderContextByPipelineInfo(); // there is none to be the main one
    });
    EXPECT_TRUE(manager().CheckMainRenderContextByPipelineInfo());
    onThread("Worker 1", [] { EXPECT_EQ(afterMakeCurrent(kA), kA); });
    data.mainThreadName.clear(); // admits every thread
    EXPECT_EQ(afterMakeCurrent(kB), kB);
    const auto recognise = [] {
        gContextTls->mProcessor->UpdateMainRenderContextStatus(true);
        app::PlatSwapBuffersHooked(nullptr, nullptr);
    };
    app::PlatSwapBuffersHooked(nullptr, nullptr);
    EXPECT_TRUE(manager().CheckMainRenderContextByPipelineInfo());
    recognise();
    EXPECT_FALSE(manager().CheckMainRenderContextByPipelineInfo());
    onThread("other", [&] { EXPECT_EQ(afterMakeCurrent(kA), nullptr); });
    EXPECT_EQ(afterMakeCurrent(kB), kB);
    manager().EraseRenderContext(kB);
    EXPECT_EQ(afterMakeCurrent(kA), kA); // has a processor from before
    recognise();
    EXPECT_EQ(afterMakeCurrent(kB), nullptr);
    EXPECT_EQ(afterMakeCurrent(kA), kA); // and is still not the main one, which would be the only one
    manager().EraseRenderContext(kA);
}

// Catches an unknown mode that is taken for a known one, and a pattern that ends the game's thread.
TEST(ContextManager, ServesNoContextInUnknownModesAndByBadPatterns) {
    auto& data = beFramework(APP_TYPE_BILI, kSharedShading);
    const LogCapture log;
    data.mainContextMode = 3;
    EXPECT_TRUE(manager().CreateAndAddRenderContext(kA));
    EXPECT_EQ(afterMakeCurrent(kA), nullptr);
    EXPECT_THAT(log.texts(ANDROID_LOG_WARN), ElementsAre("unrecognized context pointer: 0xa0"));
    data.mainContextMode = 1;
    data.mainThreadName = "(unclosed";
    EXPECT_EQ(afterMakeCurrent(kA), nullptr);
    EXPECT_EQ(afterMakeCurrent(kA), nullptr);
    EXPECT_EQ(log.texts(ANDROID_LOG_ERROR).size(), 1u);
}

// Catches a data race (under the thread sanitizer): contexts come and go while the application asks for a function that
// a module needs.
TEST(ContextManager, StandsContextsAndQueriesOnManyThreads) {
    const auto driver = RecordingDriver::installed();
    auto& data = beFramework(APP_TYPE_BILI, kSharedShading);
    data.ColloctModuleExtensionFunctions();
    std::vector<std::thread> threads;
    std::atomic<int> rounds{0};
    std::atomic<int> served{0};
    for (uintptr_t thread = 1; thread <= 3; ++thread) {
        threads.emplace_back([thread, &rounds, &served] {
            for (uintptr_t round = 0; round < 200; ++round) {
                void* const own = reinterpret_cast<void*>(thread * 0x1000 + round % 4);
                manager().CreateAndAddRenderContext(own);
                manager().MakeCurrentRenderContext(own);
                served += OrvelRenderContextTLS::GetCurProcessor(gContextTls) != nullptr;
                app::PlatSwapBuffersHooked(nullptr, nullptr);
                ++rounds;
                manager().EraseRenderContext(reinterpret_cast<void*>((thread % 3 + 1) * 0x1000 + round % 4));
            }
            manager().MakeCurrentRenderContext(nullptr);
        });
    }
    while (rounds < 300) {
        data.RemoveExtensionFunction("glUnknown");
    }
    data.RemoveExtensionFunction("glShadingRateEXT");
    for (std::thread& each : threads) {
        each.join();
    }
    EXPECT_FALSE(data.HasAnyModuleId());
    EXPECT_GT(served, 0);
    for (uintptr_t context = 0x1000; context < 0x4000; ++context) {
        manager().EraseRenderContext(reinterpret_cast<void*>(context));
    }
}

} // namespace
