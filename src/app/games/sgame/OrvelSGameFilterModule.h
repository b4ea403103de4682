// The colour filter of the SGame package.
#pragma once

#include "app/GlFunctors.h"
#include "app/OrvelModuleBase.h"
#include "base/OrvelNameSet.h"
#include "base/OrvelPatternList.h"
#include "base/OrvelTextMemo.h"

#include <EGL/egldefs.h>

#include <cstdint>
#include <string_view>

namespace android::orvel::app {
class OrvelSGameProcessor;
}

namespace android::orvel::app::module {

class OrvelSGameFilterModuleData;

/**
 * Draws the filter once a frame where the processor finds the 3D scene finished, so that it colours the scene and not
 * the interface; at the frame's end if it never found that. Tells the processor when a result screen ends a battle.
 */
class OrvelSGameFilterModule : public OrvelModuleBase {
public:
    static constexpr uint32_t PROCESSOR_MODULE_TYPE = 2;

    /** @param processor an OrvelSGameProcessor. Without parameters in the configuration the module is not valid. */
    explicit OrvelSGameFilterModule(OrvelProcessorBase* processor);

    uint32_t GetModuleId() const override { return PROCESSOR_MODULE_TYPE; }
    void RegisterModuleFunctors() override;
    void UnregisterModuleFunctors() override;
    void FrameEnd() override;

    static void RegisterGlobalModuleGLHooks(egl_connection_t* cnx);

private:
    static void PreGlDrawArraysHooked(OrvelModuleBase* owner, GLenum mode, GLint first, GLsizei count);
    static void PreGlDrawArraysInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLint first, GLsizei count,
                                               GLsizei instances);
    static void PreGlDrawElementsHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count, GLenum type,
                                        const void* indices);
    static void PreGlDrawElementsInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count, GLenum type,
                                                 const void* indices, GLsizei instances);
    static void PreGlBindTextureHooked(OrvelModuleBase* owner, GLenum target, GLuint texture);
    static void PreGlLabelObjectEXTHooked(OrvelModuleBase* owner, GLenum type, GLuint object, GLsizei length,
                                          const GLchar* label);
    static void PreGlDeleteTexturesHooked(OrvelModuleBase* owner, GLsizei n, const GLuint* textures);

    OrvelSGameProcessor& Processor() const;
    template <typename Operation>
    void ForEachNode(Operation operation);
    void CheckRenderEffect();
    void RenderEffect();
    void RenderEffectWithColors();
    void NoteBind(GLuint texture);
    void NoteLabel(GLuint texture, std::string_view label);

    const OrvelSGameFilterModuleData* const mData; // not owned
    OrvelPatternList mResultPatterns;
    OrvelTextMemo mLabels;
    OrvelNameSet mSkipTextures;
    OrvelNameSet mResultTextures;
    bool mRendered = false; // in this frame
    bool mSkipNextDraw = false;
    bool mResultSeen = false; // a result screen's texture was bound in this frame
    GLint mSavedColorMask[4] = {};

    GlDrawArraysInstancedFunctor mDrawArraysInstanced{this, PreGlDrawArraysInstancedHooked};
    GlDrawArraysFunctor mDrawArrays{this, PreGlDrawArraysHooked};
    GlDrawElementsInstancedFunctor mDrawElementsInstanced{this, PreGlDrawElementsInstancedHooked};
    GlDrawElementsFunctor mDrawElements{this, PreGlDrawElementsHooked};
    GlBindTextureFunctor mBindTexture{this, PreGlBindTextureHooked};
    GlLabelObjectEXTFunctor mLabelObjectEXT{this, PreGlLabelObjectEXTHooked};
    GlDeleteTexturesFunctor mDeleteTextures{this, PreGlDeleteTexturesHooked};
};

} // namespace android::orvel::app::module
