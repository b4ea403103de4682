// Variable-rate shading of the SGame package: in battle, draws by the texture they use and the screen by regions.
#pragma once

#include "app/GlFunctors.h"
#include "app/OrvelModuleBase.h"
#include "app/VRSComponent.h"
#include "app/games/sgame/OrvelSGameRateImage.h"
#include "app/games/sgame/OrvelSGameVRSModuleData.h"
#include "base/OrvelTextMemo.h"

#include <EGL/egldefs.h>

#include <array>
#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace android::orvel::app {
class OrvelSGameProcessor;
}

namespace android::orvel::app::module {

/**
 * Each of the two ways has a mask of conditions, rebuilt at the end of every frame: draws act while all of theirs hold,
 * each step of the regions while those hold that it needs.
 *
 *   draws     a draw gets the rate of the first texture bound before it whose label was recognised
 *   regions   a rate image at the scene's main colour target: rings around the centre, the minimap coarsest
 *
 * Every hooked call is passed on unchanged, after the module's own work.
 */
class OrvelSGameVRSModule : public OrvelModuleBase {
public:
    static constexpr uint32_t PROCESSOR_MODULE_TYPE = 1;

    /** @param processor an OrvelSGameProcessor. Not valid without usable parameters in the configuration. */
    explicit OrvelSGameVRSModule(OrvelProcessorBase* processor);

    uint32_t GetModuleId() const override { return PROCESSOR_MODULE_TYPE; }
    void RegisterModuleFunctors() override;
    void UnregisterModuleFunctors() override;
    void FrameEnd() override;

    static void RegisterGlobalModuleGLHooks(egl_connection_t* cnx);

private:
    static void PreGlLabelObjectEXTHooked(OrvelModuleBase* owner, GLenum type, GLuint object, GLsizei length,
                                          const GLchar* label);
    static void PreGlDrawArraysHooked(OrvelModuleBase* owner, GLenum mode, GLint first, GLsizei count);
    static void PreGlDrawElementsHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count, GLenum type,
                                        const void* indices);
    static void PreGlDrawElementsInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count, GLenum type,
                                                 const void* indices, GLsizei instances);
    static void PreGlDrawArraysInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLint first, GLsizei count,
                                               GLsizei instances);
    static void PreGlBindTextureHooked(OrvelModuleBase* owner, GLenum target, GLuint texture);
    static void PreGlFramebufferTexture2DHooked(OrvelModuleBase* owner, GLenum target, GLenum attachment,
                                                GLenum texTarget, GLuint texture, GLint level);
    static void PreGlFramebufferTexture2DMultisampleEXTHooked(OrvelModuleBase* owner, GLenum target, GLenum attachment,
                                                              GLenum texTarget, GLuint texture, GLint level,
                                                              GLsizei samples);
    static void PreGlBindFramebufferHooked(OrvelModuleBase* owner, GLenum target, GLuint framebuffer);
    static void PreGlUniform4fvHooked(OrvelModuleBase* owner, GLint location, GLsizei count, const GLfloat* value);
    static void PreGlUseProgramHooked(OrvelModuleBase* owner, GLuint program);

    GlLabelObjectEXTFunctor mLabelObjectEXT{this, PreGlLabelObjectEXTHooked};
    GlDrawArraysFunctor mDrawArrays{this, PreGlDrawArraysHooked};
    GlDrawElementsFunctor mDrawElements{this, PreGlDrawElementsHooked};
    GlDrawElementsInstancedFunctor mDrawElementsInstanced{this, PreGlDrawElementsInstancedHooked};
    GlDrawArraysInstancedFunctor mDrawArraysInstanced{this, PreGlDrawArraysInstancedHooked};
    GlBindTextureFunctor mBindTexture{this, PreGlBindTextureHooked};
    GlFramebufferTexture2DFunctor mFramebufferTexture2D{this, PreGlFramebufferTexture2DHooked};
    GlFramebufferTexture2DMultisampleEXTFunctor mFramebufferTexture2DMultisampleEXT{
        this, PreGlFramebufferTexture2DMultisampleEXTHooked};
    GlBindFramebufferFunctor mBindFramebuffer{this, PreGlBindFramebufferHooked};
    GlUniform4fvFunctor mUniform4fv{this, PreGlUniform4fvHooked};
    GlUseProgramFunctor mUseProgram{this, PreGlUseProgramHooked};

    using TextureRates = std::unordered_map<GLuint, GLenum>; // texture to rate; 0: none

    OrvelSGameProcessor& Processor() const;
    /** Calls operation(chain, node) for each entry with a node of ours: the processor's chain and that node. */
    template <typename Operation>
    void ForEachNode(Operation operation);

    // The frame's end, in its order.
    void ReadSlowSettings();
    void UpdateMasks();
    void ForgetBattle();
    void ApplyLevel();

    void LearnTexture(GLuint texture, std::string_view label);
    int MeaningOf(std::string_view label) const;
    void ChooseDrawRate(GLuint texture);
    void DrawcallRateSetting();
    void ApplyDrawRate();
    void SetDrawRate(GLenum rate);
    void CheckMotion(GLint location, const GLfloat* matrix);
    void AttachRateImage(GLenum target, GLenum attachment, GLenum texTarget, GLuint texture, bool multisampled);
    void CombineRates();

    const OrvelSGameVRSModuleData mData; // a copy: the configuration may lose its own at any time
    VRSComponent& mComponent;

    // What every bind and draw reads.
    uint8_t mDrawMask = 1;
    uint8_t mRegionMask;
    bool mSmallWindow = false;
    bool mDrawRateChosen = false; // for the next draw
    bool mMotionChecked = false;  // in this frame
    GLenum mWantedRate = GL_SHADING_RATE_1X1_PIXELS_EXT;
    GLenum mAppliedRate = GL_SHADING_RATE_1X1_PIXELS_EXT; // the one that this module set last
    int32_t mImageQuality = 0;
    TextureRates* mCurrentTextureRates = nullptr; // of the level chosen last; null since the lobby
    GLuint mBoundTexture2D = 0;                   // last one, of whatever unit
    GLuint mBoundFramebuffer = 0;                 // for drawing
    GLuint mVrsFramebuffer = 0;                   // the one that has the rate image
    GLuint mCurrentProgram = 0;

    int32_t mVrsLevel = 0;
    int32_t mAppliedLevel = 0;
    bool mMapSeen = false;       // a texture of a battle's map was labelled since the lobby
    bool mRegionApplied = false; // the framebuffer with the rate image was bound in this frame

    bool mMotion = true;    // the camera moved when it was looked at last
    GLint mMVPLocation = 0; // where the program mMVPProgram has the camera's matrix
    GLuint mMVPProgram = 0;
    std::array<float, 4> mLastMVP{}; // the matrix's fourth column

    GLuint mMainColorTexture = 0;
    std::unordered_map<int32_t, TextureRates> mTextureRates; // by level; what was learnt since the lobby
    OrvelTextMemo mMeanings;                                 // of labels
    OrvelSGameRateImage mRateImage{mData};
};

} // namespace android::orvel::app::module
