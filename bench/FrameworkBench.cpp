#include "FrameworkBench.h"

#include "FrameworkFloors.h"
#include "Measure.h"
#include "app/GlFunctors.h"
#include "app/GlobalGlHooks.h"
#include "app/OrvelApplicationUtils.h"
#include "app/OrvelModuleBase.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelProcessorDataBase.h"
#include "hook/OrvelHook.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

using namespace android;
using namespace android::orvel;
using next::GlTable;

namespace {

gl_hooks_t sDirect;
gl_hooks_t sFloor;
gl_hooks_t sHooked;
egl_connection_t sDriver;
egl_connection_t sFramework; // that driver with the framework installed

/** Watches two entries, as a game's processor does. */
class BenchProcessor : public app::OrvelProcessorBase {
public:
    uint32_t GetProcessorId() override { return 0; }
    void GlDrawArraysHooked(GLenum mode, GLint first, GLsizei count) { mDrawArrays.Call(mode, first, count); }
    void GlBindFramebufferHooked(GLenum target, GLuint framebuffer) {
        if (target == GL_FRAMEBUFFER || target == GL_DRAW_FRAMEBUFFER) {
            mFramebuffer = framebuffer;
        }
        mBindFramebuffer.Call(target, framebuffer);
    }

    app::module::GlChain<app::module::GlDrawArraysFunctor> mDrawArrays{app::module::sDriverGlDrawArrays};

private:
    app::module::GlChain<app::module::GlBindFramebufferFunctor> mBindFramebuffer{app::module::sDriverGlBindFramebuffer};
    GLuint mFramebuffer = 0;
};

/** Passes every draw on. */
class BenchModule : public app::module::OrvelModuleBase {
public:
    explicit BenchModule(BenchProcessor& processor) : OrvelModuleBase(&processor) { RegisterModuleFunctors(); }
    ~BenchModule() override { UnregisterModuleFunctors(); }
    uint32_t GetModuleId() const override { return 1; }
    void RegisterModuleFunctors() override { Processor().mDrawArrays.Install(mNode); }
    void UnregisterModuleFunctors() override { Processor().mDrawArrays.Remove(mNode); }

private:
    BenchProcessor& Processor() const { return *static_cast<BenchProcessor*>(mProcessor); }
    static void PreGlDrawArraysHooked(OrvelModuleBase* owner, GLenum mode, GLint first, GLsizei count) {
        static_cast<BenchModule*>(owner)->mNode.CallNext(mode, first, count);
    }
    app::module::GlDrawArraysFunctor mNode{this, PreGlDrawArraysHooked};
};

/** Around one measurement: a processor with that many nodes on this thread, ours and the floor's. */
template <int Nodes>
class Chain {
public:
    Chain() {
        mContext.mProcessor = new BenchProcessor;
        gContextTls = &mContext;
        for (int i = 0; i < Nodes; ++i) {
            mModules[i] = std::make_unique<BenchModule>(static_cast<BenchProcessor&>(*mContext.mProcessor));
        }
        setFloorNodes(Nodes);
    }
    ~Chain() {
        gContextTls = nullptr;
        setFloorNodes(-1);
    }

private:
    OrvelRenderContext mContext{this};
    std::unique_ptr<BenchModule> mModules[Nodes + 1]; // go before the processor
};

const Call kNoContext[] = {{"no context", [](const GlTable& t) { t.glDrawArrays(GL_TRIANGLES, 0, 3); }}};
const Call kEmptyChain[] = {{"empty chain", kNoContext[0].make}, {"empty chain bookkeeping", [](const GlTable& t) {
                                                                      t.glBindFramebuffer(GL_FRAMEBUFFER, 1);
                                                                  }}};
const Call kOneNode[] = {{"one node", kNoContext[0].make}};
const Call kTwoNodes[] = {{"two nodes", kNoContext[0].make}};
const Way kWays[] = {{"direct", &sDirect}, {"floor", &sFloor}, {"hook", &sHooked}};

/** Makes this process one of the framework, with two contexts. From here on only the framework can be measured. */
void startFramework() {
    auto& settings = OrvelSettings::getInstance();
    if (settings.mPrefs) {
        return;
    }
    settings.mApplicationType = APP_TYPE_BILI;
    settings.mPrefs = new com::velmor::ravelo::OrvelPrefs;
    app::InitProcessorCreateInfo();
    settings.mPrefs->mProcessorData->InitModuleIdArray(262144);
    sFramework = sDriver;
    sFramework.hooks[egl_connection_t::GLESv2_INDEX] = &sHooked;
    sFramework.platform.eglCreateContext = [](EGLDisplay, EGLConfig, EGLContext, const EGLint*) {
        static char names[2];
        static int next = 0;
        return static_cast<EGLContext>(&names[next++]);
    };
    hook::RegisterHookedFunctions(&sFramework);
}

/** Makes two contexts current in turn, then swaps. */
void registerPlatform(const char* way, const egl_connection_t& connection) {
    const platform_impl_t& platform = connection.platform;
    benchmark::RegisterBenchmark((std::string("eglMakeCurrent/") + way).c_str(), [&platform](benchmark::State& state) {
        startFramework();
        static EGLContext contexts[2] = {sFramework.platform.eglCreateContext(nullptr, nullptr, nullptr, nullptr),
                                         sFramework.platform.eglCreateContext(nullptr, nullptr, nullptr, nullptr)};
        size_t turn = 0;
        for (auto _ : state) {
            platform.eglMakeCurrent(nullptr, nullptr, nullptr, contexts[turn++ % 2]);
        }
    });
    benchmark::RegisterBenchmark((std::string("eglSwapBuffers/") + way).c_str(), [&platform](benchmark::State& state) {
        startFramework();
        for (auto _ : state) { // in the context that was made current last
            platform.eglSwapBuffers(nullptr, nullptr);
        }
    });
}

} // namespace

void connectFramework(const egl_connection_t& driver) {
    sDriver = driver;
    sDirect = sFloor = sHooked = *driver.hooks[egl_connection_t::GLESv2_INDEX];
    installFrameworkFloors(sFloor.gl);
    sHooked.gl.glDrawArrays = GlobalGlDrawArraysHookFunctor<BenchProcessor>::GlDrawArrays;
    sHooked.gl.glBindFramebuffer = GlobalGlBindFramebufferHookFunctor<BenchProcessor>::GlBindFramebuffer;
}

void registerFrameworkTimes() {
    registerCalls<NoFeature>(kNoContext, kWays);
    registerCalls<Chain<0>>(kEmptyChain, kWays);
    registerCalls<Chain<1>>(kOneNode, kWays);
    registerCalls<Chain<2>>(kTwoNodes, kWays);
    registerPlatform("direct", sDriver);
    registerPlatform("hook", sFramework);
}

void countFrameworkInstructions() {
    countCalls<NoFeature>(kNoContext, kWays);
    countCalls<Chain<0>>(kEmptyChain, kWays);
    countCalls<Chain<1>>(kOneNode, kWays);
    countCalls<Chain<2>>(kTwoNodes, kWays);
}
