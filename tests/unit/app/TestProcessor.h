// A processor with chains around two entries and modules that note what reaches them, without a game's configuration.
#pragma once

#include "RecordingDriver.h"
#include "app/GlFunctors.h"
#include "app/GlobalGlHooks.h"
#include "app/OrvelModuleBase.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelRenderContext.h"

#include <string>
#include <vector>

/** Everything that happens, driver's calls excluded, in order. */
inline std::vector<std::string> sEvents;

class TestProcessor : public android::orvel::app::OrvelProcessorBase {
public:
    uint32_t GetProcessorId() override { return 99; }

    void GlDrawArraysHooked(GLenum mode, GLint first, GLsizei count) {
        mDrawArrays.Call(mode, first, count);
        mPostDrawArrays.Call(mode, first, count);
    }
    GLuint GlCreateShaderHooked(GLenum type) {
        const GLuint shader = mCreateShader.Call(type);
        mPostCreateShader.Call(type, shader);
        return shader;
    }

    template <typename Functor>
    using Chain = android::orvel::app::module::GlChain<Functor>;
    Chain<android::orvel::app::module::GlDrawArraysFunctor> mDrawArrays{
        android::orvel::app::module::sDriverGlDrawArrays};
    Chain<android::orvel::app::module::GlDrawArraysFunctor> mPostDrawArrays{
        android::orvel::app::module::sPostDummyGlDrawArrays};
    Chain<android::orvel::app::module::PreGlCreateShaderFunctor> mCreateShader{
        android::orvel::app::module::sDriverGlCreateShader};
    Chain<android::orvel::app::module::PostGlCreateShaderFunctor> mPostCreateShader{
        android::orvel::app::module::sPostDummyGlCreateShader};
};

using DrawHook = android::orvel::GlobalGlDrawArraysHookFunctor<TestProcessor>;
using ShaderHook = android::orvel::GlobalGlCreateShaderHookFunctor<TestProcessor>;

/** Draws one vertex more than it is asked to, or swallows the draw; counts shaders from where they are made. */
class TestModule : public android::orvel::app::module::OrvelModuleBase {
public:
    TestModule(TestProcessor* owner, uint32_t id, int32_t priority = 0) : OrvelModuleBase(owner), mId(id) {
        mPre.priority = mPost.priority = mPostShader.priority = priority;
    }
    ~TestModule() override { Note("released"); }

    uint32_t GetModuleId() const override { return mId; }
    void RegisterModuleFunctors() override {
        Note("registered");
        Owner()->mDrawArrays.Install(mPre);
        Owner()->mPostDrawArrays.Install(mPost);
        Owner()->mPostCreateShader.Install(mPostShader);
    }
    void UnregisterModuleFunctors() override {
        Note("unregistered");
        Owner()->mDrawArrays.Remove(mPre);
        Owner()->mPostDrawArrays.Remove(mPost);
        Owner()->mPostCreateShader.Remove(mPostShader);
        Owner()->mDrawArrays.Remove(mUnused);
    }
    void FrameEnd() override { Note("frame ", mProcessor->GetCurrentFrameId()); }
    void PostFrameEnd() override { Note("after frame ", mProcessor->GetCurrentFrameId()); }

    bool mSwallows = false;

private:
    TestProcessor* Owner() const { return static_cast<TestProcessor*>(mProcessor); }
    void Note(const std::string& text) const { sEvents.push_back(std::to_string(mId) + " " + text); }
    void Note(const char* text, uint64_t number) const { Note(text + std::to_string(number)); }
    static void PreDraw(OrvelModuleBase* owner, GLenum mode, GLint first, GLsizei count) {
        auto* self = static_cast<TestModule*>(owner);
        self->Note("draws");
        if (!self->mSwallows) {
            self->mPre.CallNext(mode, first, count + 1);
        }
    }
    static void PostDraw(OrvelModuleBase* owner, GLenum mode, GLint first, GLsizei count) {
        auto* self = static_cast<TestModule*>(owner);
        self->Note("drew");
        self->mPost.CallNext(mode, first, count);
    }
    static void PostShader(OrvelModuleBase* owner, GLenum type, GLuint created) {
        auto* self = static_cast<TestModule*>(owner);
        self->Note("shader ", created);
        self->mPostShader.CallNext(type, created);
    }

    const uint32_t mId;
    android::orvel::app::module::GlDrawArraysFunctor mPre{this, PreDraw};
    android::orvel::app::module::GlDrawArraysFunctor mPost{this, PostDraw};
    android::orvel::app::module::PostGlCreateShaderFunctor mPostShader{this, PostShader};
    android::orvel::app::module::GlDrawArraysFunctor mUnused;
};

/** Makes a processor the calling thread's current one while it lives. */
class CurrentProcessor {
public:
    CurrentProcessor() {
        mContext.mProcessor = new TestProcessor; // released with the context
        android::orvel::gContextTls = &mContext;
    }
    ~CurrentProcessor() { android::orvel::gContextTls = nullptr; }
    TestProcessor* operator->() const { return get(); }
    TestProcessor* get() const { return static_cast<TestProcessor*>(mContext.mProcessor); }

private:
    android::orvel::OrvelRenderContext mContext{this};
};
