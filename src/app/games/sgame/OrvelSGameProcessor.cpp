#include "app/games/sgame/OrvelSGameProcessor.h"

#include "app/GlobalGlHooks.h"
#include "app/games/sgame/OrvelSGameData.h"
#include "app/games/sgame/OrvelSGameFilterModule.h"
#include "base/LabelText.h"
#include "base/OrvelGuard.h"
#include "base/OrvelLog.h"
#include "next/effects/OrvelVisualEffectManager.h"
#include "settings/OrvelSettings.h"

namespace android::orvel::app {

namespace {

constexpr int kNoClass = -1;

/** @return the process's configuration; an empty one if that is not this game's */
const OrvelSGameData* currentData() {
    static const auto& none = *new OrvelSGameData; // never destroyed: hooks run until the process has ended
    const auto* data = dynamic_cast<const OrvelSGameData*>(&OrvelSettings::getInstance().getProcessorData());
    return data ? data : &none;
}

} // namespace

OrvelSGameProcessor::OrvelSGameProcessor()
    : mData(currentData()),
      mDrawCountThreshold(static_cast<uint32_t>(mData->GetDrawCountThreshold())),
      mSceneStatusMap{
          {kServiceLobby, kStatusLobby},        {101, kStatusLobby}, {102, kStatusHeroSelect},
          {kServiceOther, kStatusOther},        {6, kStatusOther},   {kServiceBattle, kStatusBattle},
          {kServiceOtherBattle, kStatusBattle},
      } {}

OrvelSGameProcessor::~OrvelSGameProcessor() { delete mEffectManager; }

bool OrvelSGameProcessor::HasEffectModule() {
    return GetGLModule(module::OrvelSGameFilterModule::PROCESSOR_MODULE_TYPE) != nullptr;
}

bool OrvelSGameProcessor::EnableEffectManagerLoadResource() { return mCurSceneId == kServiceLobby || mLobbyLatched; }

void OrvelSGameProcessor::RegisterGlobalGLHooks(egl_connection_t* cnx) {
    next::GlTable& table = cnx->hooks[egl_connection_t::GLESv2_INDEX]->gl;
    table.glBindFramebuffer = GlobalGlBindFramebufferHookFunctor<OrvelSGameProcessor>::GlBindFramebuffer;
    table.glClear = GlobalGlClearHookFunctor<OrvelSGameProcessor>::GlClear;
    table.glDrawElements = GlobalGlDrawElementsHookFunctor<OrvelSGameProcessor>::GlDrawElements;
    table.glBindTexture = GlobalGlBindTextureHookFunctor<OrvelSGameProcessor>::GlBindTexture;
    table.glLabelObjectEXT = GlobalGlLabelObjectEXTHookFunctor<OrvelSGameProcessor>::GlLabelObjectEXT;
    table.glDeleteTextures = GlobalGlDeleteTexturesHookFunctor<OrvelSGameProcessor>::GlDeleteTextures;
    table.glDeleteProgram = GlobalGlDeleteProgramHookFunctor<OrvelSGameProcessor>::GlDeleteProgram;
    table.glColorMask = GlobalGlColorMaskHookFunctor<OrvelSGameProcessor>::GlColorMask;
    table.glUseProgram = GlobalGlUseProgramHookFunctor<OrvelSGameProcessor>::GlUseProgram;
}

int32_t OrvelSGameProcessor::GetSceneStatus(int sceneId) const {
    const auto status = mSceneStatusMap.find(sceneId);
    return status == mSceneStatusMap.end() ? kStatusUnknown : status->second;
}

// ---- labels --------------------------------------------------------------------------------------------------------

void OrvelSGameProcessor::GlLabelObjectEXTHooked(GLenum type, GLuint object, GLsizei length, const GLchar* label) {
    if (const std::string_view text = labelText(length, label); !text.empty()) {
        guarded("label", [&] { NoteLabel(type, object, text); });
    }
    mLabelObjectEXT.Call(type, object, length, label);
}

void OrvelSGameProcessor::NoteLabel(GLenum type, GLuint object, std::string_view label) {
    if (type == GL_PROGRAM_OBJECT_EXT) {
        const auto& patterns = mData->GetClearProgramLabelRegexs();
        const auto lookUp = [&patterns](std::string_view text) { return patterns.find(text); };
        if (mProgramLabels.find(label, lookUp) != OrvelPatternList::kNone) {
            mClearPrograms.insert(object);
        }
        return;
    }
    // In a battle that the service reports, texture labels are ignored on purpose.
    if (type != GL_TEXTURE || ServiceReportsBattle()) {
        return;
    }
    const int found = mTextureLabels.find(label, [this](std::string_view text) { return ClassifyTexture(text); });
    if (found != kNoClass) {
        mTextures[static_cast<size_t>(found)].insert(object);
        mKnownTextures.add(object);
    }
}

int OrvelSGameProcessor::ClassifyTexture(std::string_view label) const {
    const OrvelPatternList* const patterns[TEXTURE_CLASS_COUNT] = {
        &mData->GetSceneLabelRegexs(OrvelSGameData::kSceneLobby),
        &mData->GetSceneLabelRegexs(OrvelSGameData::kScenePickHero),
        &mData->GetUILabelRegexs(OrvelSGameData::kScenePickHero),
        &mData->GetUILabelRegexs(OrvelSGameData::kSceneOther),
        &mData->GetSceneLabelRegexs(OrvelSGameData::kSceneBattle),
        &mData->GetUILabelRegexs(OrvelSGameData::kSceneBattle),
    };
    for (int each = 0; each < TEXTURE_CLASS_COUNT; ++each) {
        if (patterns[each]->find(label) != OrvelPatternList::kNone) {
            return each;
        }
    }
    return kNoClass;
}

void OrvelSGameProcessor::GlDeleteTexturesHooked(GLsizei n, const GLuint* textures) {
    for (GLsizei i = 0; textures && i < n; ++i) {
        if (textures[i] != 0) {
            for (OrvelNameSet& names : mTextures) {
                names.erase(textures[i]);
            }
        }
    }
    mDeleteTextures.Call(n, textures);
}

void OrvelSGameProcessor::GlDeleteProgramHooked(GLuint program) {
    mClearPrograms.erase(program);
    mDeleteProgram.Call(program);
}

// ---- within the frame ----------------------------------------------------------------------------------------------

void OrvelSGameProcessor::GlBindFramebufferHooked(GLenum target, GLuint framebuffer) {
    if (target == GL_FRAMEBUFFER || target == GL_DRAW_FRAMEBUFFER) {
        mBoundDrawFramebuffer = framebuffer;
    }
    mBindFramebuffer.Call(target, framebuffer);
}

void OrvelSGameProcessor::GlBindTextureHooked(GLenum target, GLuint texture) {
    // A handler does nothing with a texture of no class, as nearly every one is.
    if (texture != 0 && mBoundDrawFramebuffer == 0 && mKnownTextures.mayHave(texture)) {
        (this->*mBindTextureHandler)(texture);
    }
    mBindTexture.Call(target, texture);
}

void OrvelSGameProcessor::BindTextureLobby(GLuint texture) {
    BindTextureCheckLobby(texture);
    if (Is(BATTLE_SCENE, texture)) {
        mBattleTextureSeen = true;
    }
    if (Is(HERO_SELECT_SCENE, texture)) {
        mHeroSelectTextureSeen = true;
    }
}

void OrvelSGameProcessor::BindTextureCheckLobby(GLuint texture) {
    if (!mLobbyTextureSeen && Is(LOBBY_SCENE, texture)) {
        mLobbyTextureSeen = true;
    }
}

void OrvelSGameProcessor::BindTextureHeroSelect(GLuint texture) {
    if (Is(HERO_SELECT_UI, texture)) {
        mUITextureSeen = true;
        mDrawFlags |= kDrawUITexture;
    }
    BindTextureCheckLobby(texture);
}

void OrvelSGameProcessor::BindTextureBattle(GLuint texture) {
    if (Is(BATTLE_UI, texture)) {
        mUITextureSeen = true;
        mDrawFlags |= kDrawUITexture;
    }
}

void OrvelSGameProcessor::BindTextureDummy(GLuint) {}

void OrvelSGameProcessor::GlClearHooked(GLbitfield mask) {
    if (mask == (GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT) && mBoundDrawFramebuffer == 0) {
        ++mClearCount;
        if (!IsLightFrame()) {
            mDrawFlags |= kDrawUIBegun;
        }
    }
    mClear.Call(mask);
}

void OrvelSGameProcessor::GlUseProgramHooked(GLuint program) {
    if (program != 0 && mClearPrograms.has(program)) {
        mClearProgramState = IN_USE;
    }
    mUseProgram.Call(program);
}

void OrvelSGameProcessor::GlColorMaskHooked(GLboolean red, GLboolean green, GLboolean blue, GLboolean alpha) {
    if (!IsLightFrame()) {
        NoteColorMask(red, green, blue, alpha);
    }
    mColorMask.Call(red, green, blue, alpha);
}

void OrvelSGameProcessor::NoteColorMask(GLboolean red, GLboolean green, GLboolean blue, GLboolean alpha) {
    const auto all = [&](GLboolean value) { return red == value && green == value && blue == value && alpha == value; };
    if (all(GL_FALSE)) {
        if (mUIDrawCount == 0 && mDrawFlags >= kDrawUIPass) {
            mDrawFlags &= ~kDrawColors;
        } else if (mClearProgramState == IN_USE) {
            mClearProgramState = MASKED;
            ++mClearCount; // a draw that only clears counts as a clear
        }
    } else if (all(GL_TRUE)) { // 1 exactly: another true value is any other mask
        if (mDrawFlags != 0 && (mDrawFlags & kDrawColors) == 0) {
            mDrawFlags |= kDrawColors;
        } else if (mClearProgramState == MASKED) {
            mClearProgramState = DONE;
            mDrawFlags |= kDrawUIBegun;
        }
    }
}

// ---- from frame to frame -------------------------------------------------------------------------------------------

void OrvelSGameProcessor::FrameEnd() {
    const int32_t scene = OrvelSettings::getInstance().getSceneId();
    const bool sceneChanged = scene != mCurSceneId;
    mCurSceneId = scene;
    const bool switched = SwitchByFrame();
    if (!mLobbyLatched && mLobbyTextureSeen) {
        mLobbyLatched = true;
        mSceneFlags |= kSceneLobbyLatched;
    }
    mLobbyTextureSeen = mUITextureSeen = mHeroSelectTextureSeen = mBattleTextureSeen = false;
    mClearCount = 0;
    mDrawFlags = kDrawColors;
    OrvelProcessorBase::FrameEnd();
    if (!switched && sceneChanged) { // a change that came together with a switch is never applied, on purpose
        UpdateSceneStatus();
    }
    mSceneDrawCount = mUIDrawCount = 0;
}

bool OrvelSGameProcessor::SwitchByFrame() {
    if (mForceLobby) {
        mForceLobby = false;
        if (mSceneStatus != kStatusBattle || mCurSceneId != mBattleSceneId) { // the service may know better
            SwitchToLobby();
        }
        return true;
    }
    return CheckIfSwitchToLobby() || CheckIfSwitchFromLobby();
}

void OrvelSGameProcessor::SwitchToLobby() {
    mSceneFlags &= ~kSceneInMatch;
    mBattleSceneId = -1;
    mSceneStatus = kStatusLobby;
    mBindTextureHandler = &OrvelSGameProcessor::BindTextureLobby;
    mTextures[BATTLE_UI].clear(); // learnt again in every battle
}

bool OrvelSGameProcessor::CheckIfSwitchToLobby() {
    if (!IsLightFrame() || mSceneStatus == kStatusLobby) {
        return false;
    }
    if (!mLobbyTextureSeen) {
        // A battle that was entered by a texture has no scene to compare with.
        if (mSceneStatus != kStatusBattle || mBattleSceneId == -1) {
            return false;
        }
        if (mCurSceneId == mBattleSceneId) {
            mBindTextureHandler = &OrvelSGameProcessor::BindTextureCheckLobby;
            return false;
        }
    }
    SwitchToLobby();
    return true;
}

bool OrvelSGameProcessor::CheckIfSwitchFromLobby() {
    if (mSceneStatus != kStatusLobby) {
        return false;
    }
    if (mHeroSelectTextureSeen) {
        mSceneStatus = kStatusHeroSelect;
        mBindTextureHandler = &OrvelSGameProcessor::BindTextureHeroSelect;
    } else if (mBattleTextureSeen) {
        mSceneStatus = kStatusBattle;
        mBindTextureHandler = &OrvelSGameProcessor::BindTextureBattle;
    } else {
        return false;
    }
    mSceneFlags |= kSceneInMatch;
    return true;
}

void OrvelSGameProcessor::UpdateSceneStatus() {
    const int32_t status = GetSceneStatus(mCurSceneId);
    if (status == mSceneStatus) {
        return;
    }
    if (status == kStatusLobby) {
        if (mSceneStatus == kStatusBattle) {
            ORVEL_LOGD("tbge"); // the battle goes on until a lobby texture is seen
            return;
        }
        SwitchToLobby();
        return;
    }
    mSceneStatus = status;
    mSceneFlags |= kSceneInMatch;
    switch (status) {
    case kStatusHeroSelect:
        mBindTextureHandler = &OrvelSGameProcessor::BindTextureHeroSelect;
        break;
    case kStatusOther:
        mBindTextureHandler = &OrvelSGameProcessor::BindTextureDummy;
        break;
    case kStatusBattle:
        mBattleSceneId = mCurSceneId;
        mBindTextureHandler = &OrvelSGameProcessor::BindTextureBattle;
        break;
    default: // keeps what is looked for
        break;
    }
}

} // namespace android::orvel::app
