// The processor of the PUBG package: where in a frame the 3D scene ends and the head-up display begins.
#pragma once

#include "app/GlFunctors.h"
#include "app/OrvelProcessorBase.h"
#include "base/OrvelNameSet.h"

#include <EGL/egldefs.h>

#include <cstdint>
#include <string_view>

namespace android::orvel::app {

class OrvelPUBGData;

/**
 * Watches only while it carries a filter module. Each hooked call is noted first and passed on unchanged. The display
 * begins with a texture of its own, or with one of two sets of calls by which the game goes over to it.
 */
class OrvelPUBGProcessor : public OrvelProcessorBase {
public:
    static constexpr uint32_t PROCESSOR_TYPE = 2;

    OrvelPUBGProcessor();
    ~OrvelPUBGProcessor() override;

    uint32_t GetProcessorId() override { return PROCESSOR_TYPE; }
    void OnBegin() override;
    void FrameEnd() override;
    bool HasEffectModule() override;
    /** At once: loading spreads over many frames. */
    bool EnableEffectManagerLoadResource() override { return mFilterEnabled; }

    static void RegisterGlobalGLHooks(egl_connection_t* cnx);

    // For the filter module.
    /** @return whether the filter is due before the next draw */
    bool DrawNow() const { return mDrawNow; }
    bool FilterAllowed() const { return mFilterAllowed; }
    uint32_t DrawsSinceFrameStart() const { return mDrawsSinceFrameStart; }

    // For the global hooks.
    void GlEnableHooked(GLenum cap);
    void GlDisableHooked(GLenum cap);
    void GlBindTextureHooked(GLenum target, GLuint texture);
    void GlDiscardFramebufferEXTHooked(GLenum target, GLsizei count, const GLenum* attachments);
    void GlBlendFuncSeparateHooked(GLenum srcRgb, GLenum dstRgb, GLenum srcAlpha, GLenum dstAlpha);
    void GlLabelObjectEXTHooked(GLenum type, GLuint object, GLsizei length, const GLchar* label);
    void GlBindFramebufferHooked(GLenum target, GLuint framebuffer);
    void GlFramebufferTexture2DMultisampleEXTHooked(GLenum target, GLenum attachment, GLenum texTarget, GLuint texture,
                                                    GLint level, GLsizei samples);
    void GlDrawElementsHooked(GLenum mode, GLsizei count, GLenum type, const void* indices);
    void GlDrawElementsInstancedHooked(GLenum mode, GLsizei count, GLenum type, const void* indices, GLsizei instances);

    // Where modules install their nodes.
    template <typename Functor>
    using Chain = module::GlChain<Functor>;
    Chain<module::GlEnableFunctor> mEnable{module::sDriverGlEnable};
    Chain<module::GlDisableFunctor> mDisable{module::sDriverGlDisable};
    Chain<module::GlBindTextureFunctor> mBindTexture{module::sDriverGlBindTexture};
    Chain<module::GlDiscardFramebufferEXTFunctor> mDiscardFramebufferEXT{module::sDriverGlDiscardFramebufferEXT};
    Chain<module::GlBlendFuncSeparateFunctor> mBlendFuncSeparate{module::sDriverGlBlendFuncSeparate};
    Chain<module::GlLabelObjectEXTFunctor> mLabelObjectEXT{module::sDriverGlLabelObjectEXT};
    Chain<module::GlBindFramebufferFunctor> mBindFramebuffer{module::sDriverGlBindFramebuffer};
    Chain<module::GlFramebufferTexture2DMultisampleEXTFunctor> mFramebufferTexture2DMultisampleEXT{
        module::sDriverGlFramebufferTexture2DMultisampleEXT};
    Chain<module::GlDrawElementsFunctor> mDrawElements{module::sDriverGlDrawElements};
    Chain<module::GlDrawElementsInstancedFunctor> mDrawElementsInstanced{module::sDriverGlDrawElementsInstanced};

private:
    static constexpr GLuint kNoName = ~0u;

    /** Most signs of the display count only while the filter is allowed. */
    bool IsWatching() const { return mFilterEnabled && mFilterAllowed; }
    void NoteLabel(GLuint texture, std::string_view label);
    void NoteBindTexture(GLuint texture);
    void NoteBindFramebuffer(GLuint framebuffer);
    bool IsSceneTargetHit();
    void NoteDraw();

    const OrvelPUBGData* const mData; // not owned
    bool mFilterEnabled = false;      // there is a filter module
    int32_t mSceneId = 0;             // the service's scene at the last frame's end
    GLuint mSceneFramebuffer = kNoName;
    GLuint mSceneColorTexture = kNoName;
    bool mFilterAllowed = false;
    bool mSceneTargetHitLast = false; // mSceneTargetHit of the last frame
    uint32_t mSceneBindCount = 0;     // survives frames; reset by one of the two patterns only
    OrvelNameSet mBlockedTextures;    // neither is pruned: textures are not watched to their end
    OrvelNameSet mTriggerTextures;
    // Of this frame.
    GLuint mBoundFramebuffer = kNoName;
    bool mDrawNow = false;
    bool mBlockedSeen = false;
    bool mSceneTargetHit = false;       // the scene's framebuffer was bound, and counted
    uint32_t mDrawsSinceFrameStart = 0; // until the filter was due
    uint32_t mPattern = 0;
};

} // namespace android::orvel::app
