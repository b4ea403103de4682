// The processor of the SGame package: which phase of the game is on the screen, and whether a frame has come from the
// 3D scene to the interface.
#pragma once

#include "app/GlFunctors.h"
#include "app/OrvelProcessorBase.h"
#include "base/OrvelNameSet.h"
#include "base/OrvelTextMemo.h"

#include <EGL/egldefs.h>

#include <array>
#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace android::orvel::app {

class OrvelSGameData;

/** A phase of the game; single bits, so that several can be tested at once. */
enum SGameStatus : int32_t {
    kStatusUnknown = 0,
    kStatusLobby = 1,
    kStatusHeroSelect = 2,
    kStatusOther = 4,
    kStatusBattle = 8,
};

// Bits of SceneFlags().
constexpr uint32_t kSceneLobbyLatched = 1; // the lobby was recognised by a texture at some time
constexpr uint32_t kSceneInMatch = 2;      // a phase other than the lobby

// Bits of DrawFlags().
constexpr uint32_t kDrawUIBegun = 1;   // the scene is behind: depth and stencil were cleared after enough draws
constexpr uint32_t kDrawUITexture = 2; // a texture of the hero selection's or the battle's interface was bound
constexpr uint32_t kDrawColors = 4;    // colours are written: from the frame's start, until the scene's end masks them
/** What reads DrawFlags() compares with this value: any interface bit, while colours are written. */
constexpr uint32_t kDrawUIPass = kDrawColors | kDrawUIBegun;

// Scenes of the tuning service.
constexpr int32_t kServiceLobby = 4;
constexpr int32_t kServiceOther = 5;
constexpr int32_t kServiceBattle = 7;
constexpr int32_t kServiceOtherBattle = 8;

/**
 * Draws nothing itself. What the tuning service reports as the scene decides; labelled textures and programs, and the
 * order of draws and clears, show a change before the service reports it, or without. Each hooked call is noted first
 * and passed on unchanged.
 */
class OrvelSGameProcessor : public OrvelProcessorBase {
public:
    static constexpr uint32_t PROCESSOR_TYPE = 1;

    OrvelSGameProcessor();
    ~OrvelSGameProcessor() override;

    uint32_t GetProcessorId() override { return PROCESSOR_TYPE; }
    void FrameEnd() override;
    bool HasEffectModule() override;
    bool EnableEffectManagerLoadResource() override;

    static void RegisterGlobalGLHooks(egl_connection_t* cnx);

    // For the modules.
    int32_t CurSceneId() const { return mCurSceneId; }
    bool ServiceReportsBattle() const { return mCurSceneId == kServiceBattle || mCurSceneId == kServiceOtherBattle; }
    int32_t SceneStatus() const { return mSceneStatus; }
    uint32_t SceneFlags() const { return mSceneFlags; }
    uint32_t DrawFlags() const { return mDrawFlags; }
    /** Draws of this frame before the first clear of depth and stencil. */
    uint32_t SceneDrawCount() const { return mSceneDrawCount; }
    /** A frame with more scene draws than this is not a light one. */
    uint32_t DrawCountThreshold() const { return mDrawCountThreshold; }
    /** Asks to fall back to the lobby at the next frame's end. */
    void ForceLobby() { mForceLobby = true; }

    /** @return the status that a scene of the tuning service stands for; kStatusUnknown for a scene without one */
    int32_t GetSceneStatus(int sceneId) const;

    // For the global hooks.
    void GlLabelObjectEXTHooked(GLenum type, GLuint object, GLsizei length, const GLchar* label);
    void GlDrawArraysHooked(GLenum mode, GLint first, GLsizei count) {
        CountDraw();
        mDrawArrays.Call(mode, first, count);
    }
    void GlDrawElementsHooked(GLenum mode, GLsizei count, GLenum type, const void* indices) {
        CountDraw();
        mDrawElements.Call(mode, count, type, indices);
    }
    void GlDrawElementsInstancedHooked(GLenum mode, GLsizei count, GLenum type, const void* indices,
                                       GLsizei instances) {
        CountDraw();
        mDrawElementsInstanced.Call(mode, count, type, indices, instances);
    }
    void GlDrawArraysInstancedHooked(GLenum mode, GLint first, GLsizei count, GLsizei instances) {
        CountDraw();
        mDrawArraysInstanced.Call(mode, first, count, instances);
    }
    void GlBindTextureHooked(GLenum target, GLuint texture);
    void GlFramebufferTexture2DHooked(GLenum target, GLenum attachment, GLenum texTarget, GLuint texture, GLint level) {
        mFramebufferTexture2D.Call(target, attachment, texTarget, texture, level);
    }
    void GlFramebufferTexture2DMultisampleEXTHooked(GLenum target, GLenum attachment, GLenum texTarget, GLuint texture,
                                                    GLint level, GLsizei samples) {
        mFramebufferTexture2DMultisampleEXT.Call(target, attachment, texTarget, texture, level, samples);
    }
    void GlBindFramebufferHooked(GLenum target, GLuint framebuffer);
    void GlActiveTextureHooked(GLenum texture) { mActiveTexture.Call(texture); } // called by no global hook
    void GlUniform4fvHooked(GLint location, GLsizei count, const GLfloat* value) {
        mUniform4fv.Call(location, count, value);
    }
    void GlUseProgramHooked(GLuint program);
    void GlClearHooked(GLbitfield mask);
    void GlColorMaskHooked(GLboolean red, GLboolean green, GLboolean blue, GLboolean alpha);
    void GlDeleteTexturesHooked(GLsizei n, const GLuint* textures);
    void GlDeleteProgramHooked(GLuint program);

    // Where modules install their nodes.
    template <typename Functor>
    using Chain = module::GlChain<Functor>;
    Chain<module::GlLabelObjectEXTFunctor> mLabelObjectEXT{module::sDriverGlLabelObjectEXT};
    Chain<module::GlDrawArraysFunctor> mDrawArrays{module::sDriverGlDrawArrays};
    Chain<module::GlDrawElementsFunctor> mDrawElements{module::sDriverGlDrawElements};
    Chain<module::GlDrawElementsInstancedFunctor> mDrawElementsInstanced{module::sDriverGlDrawElementsInstanced};
    Chain<module::GlDrawArraysInstancedFunctor> mDrawArraysInstanced{module::sDriverGlDrawArraysInstanced};
    Chain<module::GlBindTextureFunctor> mBindTexture{module::sDriverGlBindTexture};
    Chain<module::GlFramebufferTexture2DFunctor> mFramebufferTexture2D{module::sDriverGlFramebufferTexture2D};
    Chain<module::GlFramebufferTexture2DMultisampleEXTFunctor> mFramebufferTexture2DMultisampleEXT{
        module::sDriverGlFramebufferTexture2DMultisampleEXT};
    Chain<module::GlBindFramebufferFunctor> mBindFramebuffer{module::sDriverGlBindFramebuffer};
    Chain<module::GlActiveTextureFunctor> mActiveTexture{module::sDriverGlActiveTexture};
    Chain<module::GlUniform4fvFunctor> mUniform4fv{module::sDriverGlUniform4fv};
    Chain<module::GlUseProgramFunctor> mUseProgram{module::sDriverGlUseProgram};
    Chain<module::GlClearFunctor> mClear{module::sDriverGlClear};
    Chain<module::GlColorMaskFunctor> mColorMask{module::sDriverGlColorMask};
    Chain<module::GlDeleteTexturesFunctor> mDeleteTextures{module::sDriverGlDeleteTextures};
    Chain<module::GlDeleteProgramFunctor> mDeleteProgram{module::sDriverGlDeleteProgram};

private:
    using BindTextureHandler = void (OrvelSGameProcessor::*)(GLuint texture);

    /** What a texture's label can tell, in the order in which the patterns are tried. */
    enum TextureClass {
        LOBBY_SCENE,
        HERO_SELECT_SCENE,
        HERO_SELECT_UI,
        HERO_UI, // of the scene "other"; filled and pruned like the others, deliberately consulted by nobody
        BATTLE_SCENE,
        BATTLE_UI,
        TEXTURE_CLASS_COUNT,
    };

    /** How the colours of the game's own clearing draw are masked off and on again. */
    enum ClearProgramState : int32_t {
        NOT_USED = 0,
        IN_USE = 1,
        MASKED = 3,
        DONE = 7,
    };

    int ClassifyTexture(std::string_view label) const;
    void NoteLabel(GLenum type, GLuint object, std::string_view label);

    bool Is(TextureClass which, GLuint texture) const { return mTextures[which].has(texture); }
    void BindTextureLobby(GLuint texture);
    void BindTextureCheckLobby(GLuint texture);
    void BindTextureHeroSelect(GLuint texture);
    void BindTextureBattle(GLuint texture);
    void BindTextureDummy(GLuint texture);

    void NoteColorMask(GLboolean red, GLboolean green, GLboolean blue, GLboolean alpha);
    bool IsLightFrame() const { return mSceneDrawCount <= mDrawCountThreshold; }
    void CountDraw() {
        ++(mClearCount == 0 ? mSceneDrawCount : mUIDrawCount);
        if (mClearProgramState != NOT_USED && mClearProgramState != MASKED) {
            mClearProgramState = NOT_USED;
        }
    }

    bool SwitchByFrame();
    void SwitchToLobby();
    bool CheckIfSwitchToLobby();
    bool CheckIfSwitchFromLobby();
    void UpdateSceneStatus();

    const OrvelSGameData* const mData; // not owned
    int32_t mCurSceneId = 0;           // the service's scene at the last frame's end
    /** Under which the service entered the last battle; -1 after the lobby. Stale in phases that are neither. */
    int32_t mBattleSceneId = -1;
    int32_t mSceneStatus = kStatusUnknown;
    GLuint mBoundDrawFramebuffer = 0;
    uint32_t mSceneDrawCount = 0; // of this frame, up to its first clear of depth and stencil
    uint32_t mUIDrawCount = 0;    // after it
    const uint32_t mDrawCountThreshold;
    uint32_t mClearCount = 0; // clears of depth and stencil in this frame
    uint32_t mDrawFlags = kDrawColors;
    // Seen in this frame.
    bool mLobbyTextureSeen = false;
    bool mUITextureSeen = false; // asked by nobody: kDrawUITexture tells modules
    bool mHeroSelectTextureSeen = false;
    bool mBattleTextureSeen = false;
    int32_t mClearProgramState = NOT_USED; // survives the frame
    bool mLobbyLatched = false;            // never cleared
    uint32_t mSceneFlags = 0;
    bool mForceLobby = false;
    BindTextureHandler mBindTextureHandler = &OrvelSGameProcessor::BindTextureLobby; // of the current phase
    std::array<OrvelNameSet, TEXTURE_CLASS_COUNT> mTextures; // by class; a texture labelled twice may be in several
    OrvelNameFilter mKnownTextures;                          // of any class
    OrvelNameSet mClearPrograms;
    OrvelTextMemo mTextureLabels;                         // to the texture's class, or -1
    OrvelTextMemo mProgramLabels;                         // to the pattern's number, or -1
    std::unordered_map<int32_t, int32_t> mSceneStatusMap; // the service's scene to a status
};

} // namespace android::orvel::app
