#include "app/games/sgame/OrvelSGameFilterModule.h"

#include "app/GlobalGlHooks.h"
#include "app/OrvelProcessorDataBase.h"
#include "app/games/sgame/OrvelSGameFilterModuleData.h"
#include "app/games/sgame/OrvelSGameProcessor.h"
#include "base/LabelText.h"
#include "base/OrvelGuard.h"
#include "next/OrvelStateTracker.h"
#include "next/effects/OrvelVisualEffectManager.h"
#include "settings/OrvelSettings.h"

#include <algorithm>
#include <iterator>

namespace android::orvel::app::module {

namespace {

constexpr uint32_t kLatchedAndInMatch = kSceneLobbyLatched | kSceneInMatch;

// What a label tells.
constexpr int kNothing = -1;
constexpr int kSkip = 0;
constexpr int kResult = 1;

const OrvelSGameFilterModuleData* currentData() {
    auto& data = OrvelSettings::getInstance().getProcessorData();
    return dynamic_cast<const OrvelSGameFilterModuleData*>(
        data.GetProcessorModuleData(OrvelSGameFilterModuleData::MODULE_DATA_TYPE));
}

} // namespace

OrvelSGameFilterModule::OrvelSGameFilterModule(OrvelProcessorBase* processor)
    : OrvelModuleBase(processor),
      mData(currentData()) {
    valid = mData != nullptr;
    if (mData) {
        mResultPatterns.append(mData->resultPatterns);
    }
}

OrvelSGameProcessor& OrvelSGameFilterModule::Processor() const {
    return static_cast<OrvelSGameProcessor&>(*mProcessor);
}

void OrvelSGameFilterModule::RegisterGlobalModuleGLHooks(egl_connection_t* cnx) {
    next::GlTable& table = cnx->hooks[egl_connection_t::GLESv2_INDEX]->gl;
    table.glDrawArraysInstanced = GlobalGlDrawArraysInstancedHookFunctor<OrvelSGameProcessor>::GlDrawArraysInstanced;
    table.glDrawArrays = GlobalGlDrawArraysHookFunctor<OrvelSGameProcessor>::GlDrawArrays;
    table.glDrawElementsInstanced =
        GlobalGlDrawElementsInstancedHookFunctor<OrvelSGameProcessor>::GlDrawElementsInstanced;
}

template <typename Operation>
void OrvelSGameFilterModule::ForEachNode(Operation operation) {
    OrvelSGameProcessor& processor = Processor();
    operation(processor.mDrawArraysInstanced, mDrawArraysInstanced);
    operation(processor.mDrawArrays, mDrawArrays);
    operation(processor.mDrawElementsInstanced, mDrawElementsInstanced);
    operation(processor.mDrawElements, mDrawElements);
    operation(processor.mBindTexture, mBindTexture);
    operation(processor.mLabelObjectEXT, mLabelObjectEXT);
    operation(processor.mDeleteTextures, mDeleteTextures);
}

void OrvelSGameFilterModule::RegisterModuleFunctors() {
    ForEachNode([](auto& chain, auto& node) { chain.Install(node); });
}

void OrvelSGameFilterModule::UnregisterModuleFunctors() {
    ForEachNode([](auto& chain, auto& node) { chain.Remove(node); });
}

// ---- when ----------------------------------------------------------------------------------------------------------

void OrvelSGameFilterModule::CheckRenderEffect() {
    if (mSkipNextDraw) {
        mSkipNextDraw = false;
        return;
    }
    const OrvelSGameProcessor& processor = Processor();
    if (processor.SceneFlags() == kLatchedAndInMatch && processor.DrawFlags() >= kDrawUIPass && !mRendered) {
        RenderEffect();
        mRendered = true; // also if nothing could be drawn
    }
}

void OrvelSGameFilterModule::NoteBind(GLuint texture) {
    OrvelSGameProcessor& processor = Processor();
    if (processor.SceneStatus() == kStatusHeroSelect && texture != 0 && processor.DrawFlags() >= kDrawUIPass) {
        if (!mSkipNextDraw && mSkipTextures.has(texture)) {
            mSkipNextDraw = true;
        }
    } else if (!mResultSeen && !processor.ServiceReportsBattle() && mResultTextures.has(texture)) {
        mResultSeen = true;
        if (processor.SceneStatus() == kStatusBattle) {
            processor.ForceLobby();
        }
    }
}

void OrvelSGameFilterModule::FrameEnd() {
    const OrvelSGameProcessor& processor = Processor();
    // A frame whose interface was never found gets its filter at the end.
    if (processor.SceneFlags() == kLatchedAndInMatch && !mRendered &&
        processor.SceneDrawCount() > processor.DrawCountThreshold() && processor.CurSceneId() != kServiceOther &&
        !mResultSeen) {
        RenderEffectWithColors();
    }
    mRendered = false;
    mSkipNextDraw = false;
    mResultSeen = false;
}

// ---- what ----------------------------------------------------------------------------------------------------------

void OrvelSGameFilterModule::RenderEffect() {
    next::OrvelVisualEffectManager* const manager = mProcessor->GetEffectManager();
    if (!manager || !manager->EnableRender()) {
        return;
    }
    guarded("filter", [manager] {
        next::OrvelStateTracker tracker(/*autoRestore=*/true);
        for (const GLenum cap : {GL_BLEND, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_SCISSOR_TEST}) {
            if (next::gl.glIsEnabled(cap)) {
                tracker.StoreEnabled(cap, true);
                next::gl.glDisable(cap);
            }
        }
        manager->Render(tracker);
    });
}

void OrvelSGameFilterModule::RenderEffectWithColors() {
    next::gl.glGetIntegerv(GL_COLOR_WRITEMASK, mSavedColorMask);
    const auto& saved = mSavedColorMask;
    if (std::find(std::begin(saved), std::end(saved), GL_FALSE) == std::end(saved)) {
        RenderEffect();
        return;
    }
    next::gl.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    RenderEffect();
    const auto channel = [&saved](size_t which) { return static_cast<GLboolean>(saved[which]); };
    next::gl.glColorMask(channel(0), channel(1), channel(2), channel(3));
}

// ---- labels --------------------------------------------------------------------------------------------------------

void OrvelSGameFilterModule::NoteLabel(GLuint texture, std::string_view label) {
    const int found = mLabels.find(label, [this](std::string_view text) {
        if (mData->skipTextures.find(text) != OrvelPatternList::kNone) {
            return kSkip;
        }
        return mResultPatterns.find(text) != OrvelPatternList::kNone ? kResult : kNothing;
    });
    if (found == kSkip) {
        mSkipTextures.insert(texture);
    } else if (found == kResult) {
        mResultTextures.insert(texture);
    }
}

// ---- hooks ---------------------------------------------------------------------------------------------------------

void OrvelSGameFilterModule::PreGlDrawArraysHooked(OrvelModuleBase* owner, GLenum mode, GLint first, GLsizei count) {
    auto* const self = static_cast<OrvelSGameFilterModule*>(owner);
    self->CheckRenderEffect();
    self->mDrawArrays.CallNext(mode, first, count);
}

void OrvelSGameFilterModule::PreGlDrawArraysInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLint first,
                                                            GLsizei count, GLsizei instances) {
    auto* const self = static_cast<OrvelSGameFilterModule*>(owner);
    self->CheckRenderEffect();
    self->mDrawArraysInstanced.CallNext(mode, first, count, instances);
}

void OrvelSGameFilterModule::PreGlDrawElementsHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count, GLenum type,
                                                     const void* indices) {
    auto* const self = static_cast<OrvelSGameFilterModule*>(owner);
    self->CheckRenderEffect();
    self->mDrawElements.CallNext(mode, count, type, indices);
}

void OrvelSGameFilterModule::PreGlDrawElementsInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count,
                                                              GLenum type, const void* indices, GLsizei instances) {
    auto* const self = static_cast<OrvelSGameFilterModule*>(owner);
    self->CheckRenderEffect();
    self->mDrawElementsInstanced.CallNext(mode, count, type, indices, instances);
}

void OrvelSGameFilterModule::PreGlBindTextureHooked(OrvelModuleBase* owner, GLenum target, GLuint texture) {
    auto* const self = static_cast<OrvelSGameFilterModule*>(owner);
    self->NoteBind(texture);
    self->mBindTexture.CallNext(target, texture);
}

void OrvelSGameFilterModule::PreGlLabelObjectEXTHooked(OrvelModuleBase* owner, GLenum type, GLuint object,
                                                       GLsizei length, const GLchar* label) {
    auto* const self = static_cast<OrvelSGameFilterModule*>(owner);
    if (const std::string_view text = labelText(length, label); type == GL_TEXTURE && !text.empty()) {
        guarded("label", [&] { self->NoteLabel(object, text); });
    }
    self->mLabelObjectEXT.CallNext(type, object, length, label);
}

void OrvelSGameFilterModule::PreGlDeleteTexturesHooked(OrvelModuleBase* owner, GLsizei n, const GLuint* textures) {
    auto* const self = static_cast<OrvelSGameFilterModule*>(owner);
    for (GLsizei i = 0; textures && i < n; ++i) {
        if (textures[i] != 0) {
            self->mSkipTextures.erase(textures[i]);
            self->mResultTextures.erase(textures[i]);
        }
    }
    self->mDeleteTextures.CallNext(n, textures);
}

} // namespace android::orvel::app::module
