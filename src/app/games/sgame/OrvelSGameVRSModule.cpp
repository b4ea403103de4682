#include "app/games/sgame/OrvelSGameVRSModule.h"

#include "app/GlobalGlHooks.h"
#include "app/games/sgame/OrvelSGameProcessor.h"
#include "base/LabelText.h"
#include "base/OrvelGuard.h"
#include "base/OrvelLog.h"
#include "base/ShadingRateEnums.h"
#include "next/OrvelNext.h"
#include "settings/GameInfoMonitor.h"
#include "settings/OrvelSettings.h"

#include <json/value.h>

#include <cmath>
#include <optional>
#include <utility>

namespace android::orvel::app::module {

namespace {

// Bits of both masks; a way acts while they hold.
constexpr uint8_t kSupported = 1;      // regions: the driver takes rate images; draws: always
constexpr uint8_t kPicture = 2;        // the game's picture settings ask for it
constexpr uint8_t kQuality = 4;        // the image quality is one of those that it is for
constexpr uint8_t kBattle = 8;         // a battle is on the screen, and its map was seen
constexpr uint8_t kRegionApplied = 16; // the rate image was in use in the frame that ends; draws: it was not
constexpr uint8_t kMotion = 32;        // the camera moves
constexpr uint8_t kLevel = 64;         // the tuning service gave a level
constexpr uint8_t kRates = 128;        // draws: there is a table of textures for the level

constexpr uint8_t kOfSlowSettings = kSupported | kPicture | kQuality;
constexpr uint8_t kInBattle = kOfSlowSettings | kBattle;
constexpr uint8_t kToApplyLevel = kInBattle | kRegionApplied | kLevel;
constexpr uint8_t kToChooseRate = kInBattle | kLevel | kRates;
constexpr uint8_t kAllOfDraws = 255;
constexpr uint8_t kAllOfRegions = 127;

constexpr uint64_t kSlowSettingsFrames = 30;
constexpr uint64_t kSummaryFrames = 360;
constexpr int32_t kPictureOn = 2;   // value of picture key 10
constexpr int32_t kMostQuality = 2; // above it nothing is learnt and no rate set
constexpr int32_t kFirstLearningScene = 5;
constexpr GLsizei kMatrixVectors = 4;
constexpr size_t kFourthColumn = 12;
constexpr float kStandsStill = 0.01f; // sum of what the matrix's fourth column may change by

// What a label means, as one number: a role, and above its bits the position of the texture's rates, from 1.
constexpr int kNoRole = 0;
constexpr int kMainColor = 1;
constexpr int kMap = 2;
constexpr int kRoleBits = 2;

constexpr bool has(uint8_t mask, uint8_t bits) { return (mask & bits) == bits; }

/** @return the configuration's parameters; unusable ones if another thread has just taken the module out */
OrvelSGameVRSModuleData copyOfParameters() {
    std::optional<OrvelSGameVRSModuleData> copy;
    OrvelSettings::getInstance().getProcessorData().WithProcessorModuleData(
        OrvelSGameVRSModuleData::MODULE_DATA_TYPE, [&](const OrvelProcessorModuleDataBase& data) {
            copy.emplace(static_cast<const OrvelSGameVRSModuleData&>(data));
        });
    return copy ? *std::move(copy) : OrvelSGameVRSModuleData(Json::Value());
}

} // namespace

OrvelSGameVRSModule::OrvelSGameVRSModule(OrvelProcessorBase* processor)
    : OrvelModuleBase(processor),
      mData(copyOfParameters()),
      mComponent(VRSComponent::GetInstance()),
      mRegionMask(mComponent.SupportsShadingRateImage() ? kSupported : 0) {
    valid = mData.valid;
}

OrvelSGameProcessor& OrvelSGameVRSModule::Processor() const { return static_cast<OrvelSGameProcessor&>(*mProcessor); }

void OrvelSGameVRSModule::RegisterGlobalModuleGLHooks(egl_connection_t* cnx) {
    next::GlTable& table = cnx->hooks[egl_connection_t::GLESv2_INDEX]->gl;
    table.glDrawArrays = GlobalGlDrawArraysHookFunctor<OrvelSGameProcessor>::GlDrawArrays;
    table.glDrawElementsInstanced =
        GlobalGlDrawElementsInstancedHookFunctor<OrvelSGameProcessor>::GlDrawElementsInstanced;
    table.glDrawArraysInstanced = GlobalGlDrawArraysInstancedHookFunctor<OrvelSGameProcessor>::GlDrawArraysInstanced;
    table.glFramebufferTexture2D = GlobalGlFramebufferTexture2DHookFunctor<OrvelSGameProcessor>::GlFramebufferTexture2D;
    table.glFramebufferTexture2DMultisampleEXT = GlobalGlFramebufferTexture2DMultisampleEXTHookFunctor<
        OrvelSGameProcessor>::GlFramebufferTexture2DMultisampleEXT;
    table.glUniform4fv = GlobalGlUniform4fvHookFunctor<OrvelSGameProcessor>::GlUniform4fv;
}

template <typename Operation>
void OrvelSGameVRSModule::ForEachNode(Operation operation) {
    OrvelSGameProcessor& processor = Processor();
    operation(processor.mLabelObjectEXT, mLabelObjectEXT);
    operation(processor.mDrawArrays, mDrawArrays);
    operation(processor.mDrawElements, mDrawElements);
    operation(processor.mDrawElementsInstanced, mDrawElementsInstanced);
    operation(processor.mDrawArraysInstanced, mDrawArraysInstanced);
    operation(processor.mBindTexture, mBindTexture);
    operation(processor.mFramebufferTexture2D, mFramebufferTexture2D);
    operation(processor.mFramebufferTexture2DMultisampleEXT, mFramebufferTexture2DMultisampleEXT);
    operation(processor.mBindFramebuffer, mBindFramebuffer);
    operation(processor.mUniform4fv, mUniform4fv);
    operation(processor.mUseProgram, mUseProgram);
}

void OrvelSGameVRSModule::RegisterModuleFunctors() {
    ForEachNode([](auto& chain, auto& node) { chain.Install(node); });
}

void OrvelSGameVRSModule::UnregisterModuleFunctors() {
    ForEachNode([](auto& chain, auto& node) { chain.Remove(node); });
}

// ---- the frame's end -----------------------------------------------------------------------------------------------

void OrvelSGameVRSModule::FrameEnd() {
    const OrvelSettings& settings = OrvelSettings::getInstance();
    mSmallWindow = settings.getSmallWindowSig() != 0;
    if (mSmallWindow) {
        return; // all stays as it is until the window is large again
    }
    const uint64_t frame = Processor().GetCurrentFrameId();
    if (frame % kSlowSettingsFrames == 0) {
        ReadSlowSettings();
    }
    UpdateMasks();
    if (settings.getSceneId() == kServiceLobby) {
        ForgetBattle();
        if (has(mRegionMask, kSupported) && !mRateImage.TemplatesReady()) {
            mRateImage.initPerRegionPBOs(frame);
        }
    }
    ApplyLevel();
    if (mCurrentTextureRates) {
        mDrawMask |= kRates;
    }
    if (frame % kSummaryFrames == 0) {
        ORVEL_LOGD("Vflag, p1 :%d, p2: %d, level: %d", mDrawMask == kAllOfDraws, mRegionMask == kAllOfRegions,
                   mVrsLevel);
    }
    mRegionApplied = false;
    mMotionChecked = false;
}

void OrvelSGameVRSModule::ReadSlowSettings() {
    const OrvelSettings& settings = OrvelSettings::getInstance();
    mVrsLevel = settings.getVrsLevel();
    mImageQuality = settings.getImageQuality();
    uint8_t draws = kSupported;
    uint8_t regions = mRegionMask & kSupported;
    if (settings.getGameInfo()->mPicKey10 == kPictureOn) {
        draws |= kPicture;
        regions |= kPicture;
    }
    if (mImageQuality == 1 || mImageQuality == 2) {
        draws |= kQuality;
    }
    if (mImageQuality == 1) {
        regions |= kQuality;
    }
    mDrawMask = draws;
    mRegionMask = regions;
}

void OrvelSGameVRSModule::UpdateMasks() {
    uint8_t both = 0;
    if (Processor().SceneStatus() == kStatusBattle && mMapSeen) {
        both |= kBattle;
    } else {
        mAppliedLevel = mVrsLevel = 0; // until the settings are read again
    }
    if (mMotion) {
        both |= kMotion;
    }
    if (mVrsLevel >= 1) {
        both |= kLevel;
    }
    mDrawMask = (mDrawMask & kOfSlowSettings) | both | (mRegionApplied ? 0 : kRegionApplied);
    mRegionMask = (mRegionMask & kOfSlowSettings) | both | (mRegionApplied ? kRegionApplied : 0);
}

/** Back in the lobby: the next battle has textures of its own. */
void OrvelSGameVRSModule::ForgetBattle() {
    if (has(mDrawMask, kOfSlowSettings)) {
        mCurrentTextureRates = nullptr;
        mTextureRates.clear();
    }
    mMapSeen = false;
}

void OrvelSGameVRSModule::ApplyLevel() {
    if (mVrsLevel == mAppliedLevel) {
        return;
    }
    if (has(mDrawMask, kToApplyLevel)) {
        mCurrentTextureRates = &mTextureRates[mVrsLevel];
    } else if (has(mRegionMask, kToApplyLevel)) {
        mRateImage.Upload(mVrsLevel, mBoundTexture2D);
    }
    mAppliedLevel = mVrsLevel; // also when neither way was open
}

// ---- learning ------------------------------------------------------------------------------------------------------

void OrvelSGameVRSModule::PreGlLabelObjectEXTHooked(OrvelModuleBase* owner, GLenum type, GLuint object, GLsizei length,
                                                    const GLchar* label) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    if (type == GL_TEXTURE && self->mImageQuality <= kMostQuality) {
        if (const std::string_view text = labelText(length, label); !text.empty()) {
            guarded("texture label", [&] { self->LearnTexture(object, text); });
        }
    }
    self->mLabelObjectEXT.CallNext(type, object, length, label);
}

void OrvelSGameVRSModule::LearnTexture(GLuint texture, std::string_view label) {
    const int meaning = mMeanings.find(label, [this](std::string_view text) { return MeaningOf(text); });
    const int role = meaning & (kMainColor | kMap);
    if (role == kMainColor) {
        mMainColorTexture = texture;
    } else if (role == kMap) {
        mMapSeen = true;
    }
    const int position = (meaning >> kRoleBits) - 1;
    if (position < 0 || OrvelSettings::getInstance().getSceneId() < kFirstLearningScene) {
        return;
    }
    const auto& rates = mData.mLabelRates[static_cast<size_t>(position)];
    mTextureRates[1][texture] = rates.level1;
    mTextureRates[2][texture] = rates.level2;
}

int OrvelSGameVRSModule::MeaningOf(std::string_view label) const {
    const int role = mData.IsMainColor(label) ? kMainColor : mData.IsMap(label) ? kMap : kNoRole;
    const int position = mData.FindLabelRates(label);
    return position == OrvelPatternList::kNone ? role : role | (position + 1) << kRoleBits;
}

// ---- the rate of a draw --------------------------------------------------------------------------------------------

void OrvelSGameVRSModule::PreGlBindTextureHooked(OrvelModuleBase* owner, GLenum target, GLuint texture) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    if (target == GL_TEXTURE_2D && !self->mSmallWindow) {
        self->mBoundTexture2D = texture;
        if (has(self->mDrawMask, kToChooseRate) && !self->mDrawRateChosen) {
            self->ChooseDrawRate(texture);
        }
    }
    self->mBindTexture.CallNext(target, texture);
}

/** There is a table: the mask says so. */
void OrvelSGameVRSModule::ChooseDrawRate(GLuint texture) {
    if (Processor().DrawFlags() >= kDrawUIPass) {
        return;
    }
    const auto found = mCurrentTextureRates->find(texture);
    if (found != mCurrentTextureRates->end() && found->second != 0) {
        mWantedRate = found->second;
        mDrawRateChosen = true;
    }
}

/** Most draws change nothing and had nothing changed for them: then whatever else holds, there is nothing to do. */
inline void OrvelSGameVRSModule::DrawcallRateSetting() {
    if (mDrawMask == kAllOfDraws || mWantedRate != GL_SHADING_RATE_1X1_PIXELS_EXT) {
        ApplyDrawRate();
    }
}

void OrvelSGameVRSModule::ApplyDrawRate() {
    if (mSmallWindow || mImageQuality > kMostQuality) {
        return;
    }
    if (mDrawMask == kAllOfDraws && Processor().DrawFlags() < kDrawUIPass) {
        mDrawRateChosen = false;
        if (mWantedRate != mAppliedRate) {
            SetDrawRate(mWantedRate);
        }
    } else if (mWantedRate != GL_SHADING_RATE_1X1_PIXELS_EXT) {
        mWantedRate = GL_SHADING_RATE_1X1_PIXELS_EXT;
        SetDrawRate(mWantedRate);
    }
}

void OrvelSGameVRSModule::SetDrawRate(GLenum rate) {
    mAppliedRate = rate;
    mComponent.SetShadingRate(rate);
}

void OrvelSGameVRSModule::PreGlDrawArraysHooked(OrvelModuleBase* owner, GLenum mode, GLint first, GLsizei count) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    self->DrawcallRateSetting();
    self->mDrawArrays.CallNext(mode, first, count);
}

void OrvelSGameVRSModule::PreGlDrawElementsHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count, GLenum type,
                                                  const void* indices) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    self->DrawcallRateSetting();
    self->mDrawElements.CallNext(mode, count, type, indices);
}

void OrvelSGameVRSModule::PreGlDrawElementsInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count,
                                                           GLenum type, const void* indices, GLsizei instances) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    self->DrawcallRateSetting();
    self->mDrawElementsInstanced.CallNext(mode, count, type, indices, instances);
}

void OrvelSGameVRSModule::PreGlDrawArraysInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLint first,
                                                         GLsizei count, GLsizei instances) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    self->DrawcallRateSetting();
    self->mDrawArraysInstanced.CallNext(mode, first, count, instances);
}

// ---- motion --------------------------------------------------------------------------------------------------------

void OrvelSGameVRSModule::PreGlUseProgramHooked(OrvelModuleBase* owner, GLuint program) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    self->mCurrentProgram = program;
    self->mUseProgram.CallNext(program);
}

void OrvelSGameVRSModule::PreGlUniform4fvHooked(OrvelModuleBase* owner, GLint location, GLsizei count,
                                                const GLfloat* value) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    if (count == kMatrixVectors && has(self->mDrawMask, kInBattle) && !self->mMotionChecked && !self->mSmallWindow &&
        self->mData.mMotionDetection) {
        self->CheckMotion(location, value);
    }
    self->mUniform4fv.CallNext(location, count, value);
}

void OrvelSGameVRSModule::CheckMotion(GLint location, const GLfloat* matrix) {
    if (location <= 0 || mCurrentProgram == 0 || !matrix) {
        return;
    }
    const GLint own = mCurrentProgram == mMVPProgram
                          ? mMVPLocation
                          : next::gl.glGetUniformLocation(mCurrentProgram, mData.mMVPUniformName.c_str());
    if (own != location) {
        return;
    }
    float change = 0;
    for (size_t i = 0; i < mLastMVP.size(); ++i) {
        change += std::fabs(matrix[kFourthColumn + i] - mLastMVP[i]);
        mLastMVP[i] = matrix[kFourthColumn + i];
    }
    mMotion = change > kStandsStill;
    mMotionChecked = true;
    mMVPLocation = own;
    mMVPProgram = mCurrentProgram;
}

// ---- the rates of regions ------------------------------------------------------------------------------------------

void OrvelSGameVRSModule::PreGlBindFramebufferHooked(OrvelModuleBase* owner, GLenum target, GLuint framebuffer) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    if (target == GL_FRAMEBUFFER || target == GL_DRAW_FRAMEBUFFER) {
        self->mBoundFramebuffer = framebuffer;
        if (framebuffer != 0 && framebuffer == self->mVrsFramebuffer && has(self->mRegionMask, kInBattle)) {
            self->CombineRates();
        }
    }
    self->mBindFramebuffer.CallNext(target, framebuffer);
}

/** How the rate image's codes change the rates of draws: the coarser one counts while the camera moves. */
void OrvelSGameVRSModule::CombineRates() {
    if (next::ext.glShadingRateCombinerOpsEXT) {
        next::ext.glShadingRateCombinerOpsEXT(GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT,
                                              has(mRegionMask, kMotion | kLevel)
                                                  ? GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MAX_EXT
                                                  : GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT);
    }
    mRegionApplied = true;
}

void OrvelSGameVRSModule::PreGlFramebufferTexture2DHooked(OrvelModuleBase* owner, GLenum target, GLenum attachment,
                                                          GLenum texTarget, GLuint texture, GLint level) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    self->AttachRateImage(target, attachment, texTarget, texture, false);
    self->mFramebufferTexture2D.CallNext(target, attachment, texTarget, texture, level);
}

void OrvelSGameVRSModule::PreGlFramebufferTexture2DMultisampleEXTHooked(OrvelModuleBase* owner, GLenum target,
                                                                        GLenum attachment, GLenum texTarget,
                                                                        GLuint texture, GLint level, GLsizei samples) {
    auto* const self = static_cast<OrvelSGameVRSModule*>(owner);
    self->AttachRateImage(target, attachment, texTarget, texture, true);
    self->mFramebufferTexture2DMultisampleEXT.CallNext(target, attachment, texTarget, texture, level, samples);
}

void OrvelSGameVRSModule::AttachRateImage(GLenum target, GLenum attachment, GLenum texTarget, GLuint texture,
                                          bool multisampled) {
    // Another kind of texture cannot be asked for its size as this one is; the error would be the game's.
    if (texTarget == GL_TEXTURE_2D && attachment == GL_COLOR_ATTACHMENT0 && texture != 0 &&
        texture == mMainColorTexture && has(mRegionMask, kOfSlowSettings)) {
        mVrsFramebuffer = mBoundFramebuffer;
        mRateImage.Attach(target, mBoundFramebuffer, texture, multisampled, mVrsLevel, mBoundTexture2D);
    }
}

} // namespace android::orvel::app::module
