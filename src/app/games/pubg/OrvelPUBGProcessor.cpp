#include "app/games/pubg/OrvelPUBGProcessor.h"

#include "app/GlobalGlHooks.h"
#include "app/games/pubg/OrvelPUBGData.h"
#include "app/games/pubg/OrvelPUBGFilterModule.h"
#include "base/LabelText.h"
#include "base/OrvelGuard.h"
#include "next/effects/OrvelVisualEffectManager.h"
#include "settings/OrvelSettings.h"

namespace android::orvel::app {

namespace {

// Scenes of the tuning service.
constexpr int32_t kFirstPlayedScene = 6;
constexpr int32_t kLastPlayedScene = 1000;
constexpr int32_t kUnfilteredScene = 111;

constexpr uint32_t kSceneBindLimit = 3;

// Bits of the pattern; those but the last two need the filter to be allowed.
constexpr uint32_t kBlendOn = 0x1;          // blending switched on, with the default framebuffer bound
constexpr uint32_t kDepthTestOff = 0x10;    // depth test switched off
constexpr uint32_t kBlendByAlpha = 0x100;   // the display's blend function, after kBlendOn
constexpr uint32_t kDiscard = 0x10000;      // both buffers discarded, with the default framebuffer bound
constexpr uint32_t kDefaultTarget = 0x1000; // the default framebuffer bound
constexpr uint32_t kSceneTarget = 0x100000; // the scene's framebuffer bound, and counted

// What a frame has shown when the display begins: one of these, exactly.
constexpr uint32_t kDiscardingFrame = kDiscard | kDefaultTarget | kBlendByAlpha | kDepthTestOff | kBlendOn;
constexpr uint32_t kSceneTargetFrame = kSceneTarget | kDefaultTarget | kBlendByAlpha | kDepthTestOff | kBlendOn;

/** @return the process's configuration; the built-in one if that is not this game's */
const OrvelPUBGData* currentData() {
    static const auto& builtIn = *new OrvelPUBGData; // never destroyed: hooks run until the process has ended
    const auto* data = dynamic_cast<const OrvelPUBGData*>(&OrvelSettings::getInstance().getProcessorData());
    return data ? data : &builtIn;
}

} // namespace

OrvelPUBGProcessor::OrvelPUBGProcessor() : mData(currentData()) {}

OrvelPUBGProcessor::~OrvelPUBGProcessor() { delete mEffectManager; }

void OrvelPUBGProcessor::OnBegin() {
    OrvelProcessorBase::OnBegin();
    mFilterEnabled = HasEffectModule();
}

bool OrvelPUBGProcessor::HasEffectModule() {
    return GetGLModule(module::OrvelPUBGFilterModule::PROCESSOR_MODULE_TYPE) != nullptr;
}

void OrvelPUBGProcessor::RegisterGlobalGLHooks(egl_connection_t* cnx) {
    next::GlTable& table = cnx->hooks[egl_connection_t::GLESv2_INDEX]->gl;
    table.glEnable = GlobalGlEnableHookFunctor<OrvelPUBGProcessor>::GlEnable;
    table.glDisable = GlobalGlDisableHookFunctor<OrvelPUBGProcessor>::GlDisable;
    table.glBindTexture = GlobalGlBindTextureHookFunctor<OrvelPUBGProcessor>::GlBindTexture;
    table.glDiscardFramebufferEXT =
        GlobalGlDiscardFramebufferEXTHookFunctor<OrvelPUBGProcessor>::GlDiscardFramebufferEXT;
    table.glBlendFuncSeparate = GlobalGlBlendFuncSeparateHookFunctor<OrvelPUBGProcessor>::GlBlendFuncSeparate;
    table.glLabelObjectEXT = GlobalGlLabelObjectEXTHookFunctor<OrvelPUBGProcessor>::GlLabelObjectEXT;
    table.glBindFramebuffer = GlobalGlBindFramebufferHookFunctor<OrvelPUBGProcessor>::GlBindFramebuffer;
    table.glFramebufferTexture2DMultisampleEXT =
        GlobalGlFramebufferTexture2DMultisampleEXTHookFunctor<OrvelPUBGProcessor>::GlFramebufferTexture2DMultisampleEXT;
}

void OrvelPUBGProcessor::FrameEnd() {
    OrvelProcessorBase::FrameEnd(); // the module looks at this frame
    mSceneId = OrvelSettings::getInstance().getSceneId();
    // A blocking texture suppresses the next frame's filter, too: it is forgotten only behind this.
    mFilterAllowed =
        mSceneId != kUnfilteredScene && mSceneId >= kFirstPlayedScene && mSceneId <= kLastPlayedScene && !mBlockedSeen;
    mSceneTargetHitLast = mSceneTargetHit;
    mDrawNow = mBlockedSeen = mSceneTargetHit = false;
    mBoundFramebuffer = kNoName;
    mDrawsSinceFrameStart = 0;
    mPattern = 0;
}

// ---- labels and textures -------------------------------------------------------------------------------------------

void OrvelPUBGProcessor::GlLabelObjectEXTHooked(GLenum type, GLuint object, GLsizei length, const GLchar* label) {
    if (mFilterEnabled && type == GL_TEXTURE) {
        if (const std::string_view text = labelText(length, label); !text.empty()) {
            guarded("label", [&] { NoteLabel(object, text); });
        }
    }
    mLabelObjectEXT.Call(type, object, length, label);
}

void OrvelPUBGProcessor::NoteLabel(GLuint texture, std::string_view label) {
    if (label == mData->sceneColorLabel) {
        mSceneColorTexture = texture;
    }
    if (mData->triggerLabels.find(label) != OrvelPatternList::kNone) {
        mTriggerTextures.insert(texture);
    } else if (mData->blockingLabels.find(label) != OrvelPatternList::kNone) {
        mBlockedTextures.insert(texture);
    }
}

void OrvelPUBGProcessor::GlBindTextureHooked(GLenum target, GLuint texture) {
    if (mFilterEnabled && target == GL_TEXTURE_2D && texture != 0) {
        NoteBindTexture(texture);
    }
    mBindTexture.Call(target, texture);
}

void OrvelPUBGProcessor::NoteBindTexture(GLuint texture) {
    if (!mBlockedSeen && mBlockedTextures.has(texture)) {
        mFilterAllowed = false; // a filter that is due already is drawn all the same
        mBlockedSeen = true;
    } else if (mFilterAllowed && !mDrawNow && mTriggerTextures.has(texture)) {
        mDrawNow = true;
    }
}

// ---- framebuffers --------------------------------------------------------------------------------------------------

void OrvelPUBGProcessor::GlBindFramebufferHooked(GLenum target, GLuint framebuffer) {
    if (mFilterEnabled && (target == GL_FRAMEBUFFER || target == GL_DRAW_FRAMEBUFFER)) {
        NoteBindFramebuffer(framebuffer);
    }
    mBindFramebuffer.Call(target, framebuffer);
}

void OrvelPUBGProcessor::NoteBindFramebuffer(GLuint framebuffer) {
    mBoundFramebuffer = framebuffer;
    if (framebuffer == 0) {
        mPattern |= kDefaultTarget;
    } else if (mSceneId >= kFirstPlayedScene && framebuffer == mSceneFramebuffer && IsSceneTargetHit()) {
        mSceneTargetHit = true;
        mPattern |= kSceneTarget;
    }
}

/**
 * Counts a bind of the scene's framebuffer, unless it hit in the last frame. Counted from 0, the fourth and the fifth
 * bind hit.
 */
bool OrvelPUBGProcessor::IsSceneTargetHit() {
    if (mSceneTargetHitLast) {
        return true;
    }
    if (mSceneBindCount > kSceneBindLimit) {
        mSceneBindCount = 0;
        return true;
    }
    return ++mSceneBindCount > kSceneBindLimit;
}

void OrvelPUBGProcessor::GlFramebufferTexture2DMultisampleEXTHooked(GLenum target, GLenum attachment, GLenum texTarget,
                                                                    GLuint texture, GLint level, GLsizei samples) {
    if (mFilterEnabled && target == GL_FRAMEBUFFER && attachment == GL_COLOR_ATTACHMENT0 &&
        texture == mSceneColorTexture) {
        mSceneFramebuffer = mBoundFramebuffer;
    }
    mFramebufferTexture2DMultisampleEXT.Call(target, attachment, texTarget, texture, level, samples);
}

void OrvelPUBGProcessor::GlDiscardFramebufferEXTHooked(GLenum target, GLsizei count, const GLenum* attachments) {
    if (IsWatching() && target == GL_FRAMEBUFFER && count == 2 && mBoundFramebuffer == 0) {
        mPattern |= kDiscard;
    }
    mDiscardFramebufferEXT.Call(target, count, attachments);
}

// ---- state and draws -----------------------------------------------------------------------------------------------

void OrvelPUBGProcessor::GlEnableHooked(GLenum cap) {
    if (IsWatching() && cap == GL_BLEND && mBoundFramebuffer == 0) {
        mPattern |= kBlendOn;
    }
    mEnable.Call(cap);
}

void OrvelPUBGProcessor::GlDisableHooked(GLenum cap) {
    if (IsWatching() && cap == GL_DEPTH_TEST) {
        mPattern |= kDepthTestOff;
    }
    mDisable.Call(cap);
}

void OrvelPUBGProcessor::GlBlendFuncSeparateHooked(GLenum srcRgb, GLenum dstRgb, GLenum srcAlpha, GLenum dstAlpha) {
    if (IsWatching() && srcRgb == GL_SRC_ALPHA && dstRgb == GL_ONE_MINUS_SRC_ALPHA && (mPattern & kBlendOn) != 0) {
        mPattern |= kBlendByAlpha;
    }
    mBlendFuncSeparate.Call(srcRgb, dstRgb, srcAlpha, dstAlpha);
}

void OrvelPUBGProcessor::GlDrawElementsHooked(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    NoteDraw();
    mDrawElements.Call(mode, count, type, indices);
}

void OrvelPUBGProcessor::GlDrawElementsInstancedHooked(GLenum mode, GLsizei count, GLenum type, const void* indices,
                                                       GLsizei instances) {
    NoteDraw();
    mDrawElementsInstanced.Call(mode, count, type, indices, instances);
}

void OrvelPUBGProcessor::NoteDraw() {
    if (!mFilterEnabled || mDrawNow) {
        return;
    }
    switch (mPattern) {
    case kDiscardingFrame:
        mSceneBindCount = 0;
        mDrawNow = true;
        break;
    case kSceneTargetFrame:
        mDrawNow = true;
        break;
    default:
        ++mDrawsSinceFrameStart;
        break;
    }
}

} // namespace android::orvel::app
