#include "app/games/pubg/OrvelPUBGFilterModule.h"

#include "app/GlobalGlHooks.h"
#include "app/games/pubg/OrvelPUBGProcessor.h"
#include "base/OrvelGuard.h"
#include "next/OrvelStateTracker.h"
#include "next/effects/OrvelVisualEffectManager.h"

namespace android::orvel::app::module {

OrvelPUBGProcessor& OrvelPUBGFilterModule::Processor() const { return static_cast<OrvelPUBGProcessor&>(*mProcessor); }

void OrvelPUBGFilterModule::RegisterGlobalModuleGLHooks(egl_connection_t* cnx) {
    next::GlTable& table = cnx->hooks[egl_connection_t::GLESv2_INDEX]->gl;
    table.glDrawElements = GlobalGlDrawElementsHookFunctor<OrvelPUBGProcessor>::GlDrawElements;
    table.glDrawElementsInstanced =
        GlobalGlDrawElementsInstancedHookFunctor<OrvelPUBGProcessor>::GlDrawElementsInstanced;
}

void OrvelPUBGFilterModule::RegisterModuleFunctors() {
    Processor().mDrawElements.Install(mDrawElements);
    Processor().mDrawElementsInstanced.Install(mDrawElementsInstanced);
}

void OrvelPUBGFilterModule::UnregisterModuleFunctors() {
    Processor().mDrawElements.Remove(mDrawElements);
    Processor().mDrawElementsInstanced.Remove(mDrawElementsInstanced);
}

void OrvelPUBGFilterModule::FrameEnd() {
    constexpr uint32_t kEnoughDraws = 11; // for a frame of the game itself
    const OrvelPUBGProcessor& processor = Processor();
    if (processor.FilterAllowed() && processor.DrawsSinceFrameStart() >= kEnoughDraws && !processor.DrawNow()) {
        FilterDraw();
    }
    mDrawn = false;
}

void OrvelPUBGFilterModule::DrawIfDue() {
    if (!mDrawn && Processor().DrawNow()) {
        FilterDraw();
    }
}

void OrvelPUBGFilterModule::FilterDraw() {
    mDrawn = true; // also if nothing can be drawn
    next::OrvelVisualEffectManager* const manager = mProcessor->GetEffectManager();
    if (!manager || !manager->EnableRender()) {
        return;
    }
    guarded("filter", [manager] {
        constexpr GLenum kInTheWay[] = {GL_BLEND, GL_SCISSOR_TEST, GL_CULL_FACE};
        next::OrvelStateTracker tracker(/*autoRestore=*/true);
        for (const GLenum cap : kInTheWay) {
            tracker.StoreEnabled(cap);
        }
        for (const GLenum cap : kInTheWay) {
            next::gl.glDisable(cap);
        }
        manager->Render(tracker);
    });
}

void OrvelPUBGFilterModule::PreGlDrawElementsHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count, GLenum type,
                                                    const void* indices) {
    auto* const self = static_cast<OrvelPUBGFilterModule*>(owner);
    self->DrawIfDue();
    self->mDrawElements.CallNext(mode, count, type, indices);
}

void OrvelPUBGFilterModule::PreGlDrawElementsInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count,
                                                             GLenum type, const void* indices, GLsizei instances) {
    auto* const self = static_cast<OrvelPUBGFilterModule*>(owner);
    self->DrawIfDue();
    self->mDrawElementsInstanced.CallNext(mode, count, type, indices, instances);
}

} // namespace android::orvel::app::module
