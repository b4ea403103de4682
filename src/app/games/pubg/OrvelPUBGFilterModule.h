// The colour filter of the PUBG package.
#pragma once

#include "app/GlFunctors.h"
#include "app/OrvelModuleBase.h"

#include <EGL/egldefs.h>

#include <cstdint>

namespace android::orvel::app {
class OrvelPUBGProcessor;
}

namespace android::orvel::app::module {

/**
 * Draws the filter once a frame, before the indexed draw at which the processor finds it due, so that it colours the 3D
 * scene and not the head-up display; at the end of a frame with enough draws if it never was due.
 */
class OrvelPUBGFilterModule : public OrvelModuleBase {
public:
    static constexpr uint32_t PROCESSOR_MODULE_TYPE = 2;

    /** @param processor an OrvelPUBGProcessor */
    using OrvelModuleBase::OrvelModuleBase;

    uint32_t GetModuleId() const override { return PROCESSOR_MODULE_TYPE; }
    void RegisterModuleFunctors() override;
    void UnregisterModuleFunctors() override;
    void FrameEnd() override;

    static void RegisterGlobalModuleGLHooks(egl_connection_t* cnx);

private:
    static void PreGlDrawElementsHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count, GLenum type,
                                        const void* indices);
    static void PreGlDrawElementsInstancedHooked(OrvelModuleBase* owner, GLenum mode, GLsizei count, GLenum type,
                                                 const void* indices, GLsizei instances);

    OrvelPUBGProcessor& Processor() const;
    void DrawIfDue();
    void FilterDraw();

    bool mDrawn = false; // in this frame
    GlDrawElementsFunctor mDrawElements{this, PreGlDrawElementsHooked};
    GlDrawElementsInstancedFunctor mDrawElementsInstanced{this, PreGlDrawElementsInstancedHooked};
};

} // namespace android::orvel::app::module
