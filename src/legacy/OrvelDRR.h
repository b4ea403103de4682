// Dynamic resolution: the game's render targets shrink and grow while it runs.
#pragma once

#include "settings/OrvelTexSize.h"
#include "settings/orvel_modify_params.h"

#include <string>
#include <vector>

namespace android {

namespace orvel {

/** Replaces recorded render targets by ones of another size. One instance; the game's rendering thread only. */
class OrvelDRR {
public:
    using TEX_SIZE = com::velmor::ravelo::TEX_SIZE;

    /** @param updateIntervalMs least time between two looks at the configuration; below 10 counts as 10 */
    OrvelDRR(bool enable, bool debug, std::string packageName, int updateIntervalMs, std::vector<TEX_SIZE> baseSizes,
             std::vector<TEX_SIZE> availableSizes, std::vector<TEX_SIZE> illegalSizes);

    bool isEnabled() const { return mEnable; }

    void modifySizeParams(int& width, int& height);
    /** @return whether the size is one that switches the feature off for good */
    bool checkIllegalSize(int width, int height) const;
    void updateTexDetailMap(unsigned format, int width, int height);
    void markCurrentFramebuffer(unsigned target, unsigned framebuffer);
    void updateFramebufferDetailMap(unsigned attachment, unsigned& texture);
    void modifyBindedTexture(unsigned& texture);
    void markCurrentTexture(unsigned target, unsigned texture);
    void deleteTextures(int n, const unsigned* ids);
    void deleteFramebuffers(int n, const unsigned* ids);
    void onEglSwapBuffersEnd();
    void modifyShaderUniform4fv_1(int location, float* v);
    void markCurrentProgram(unsigned program);
    void activeTexture(unsigned unit);
    void markLabelObject(unsigned object, const char* label);

private:
    bool mEnable;
};

} // namespace orvel

/** Asked afresh by every hook: a game that shows an illegal size switches the feature off for good. */
inline bool isOrvelDRREnable() { return mEnableDynamicResolution.load(std::memory_order_relaxed); }

/** @return the instance when the feature is on and usable, else null */
inline orvel::OrvelDRR* usableDRR() {
    return isOrvelDRREnable() && mOrvelDRR && mOrvelDRR->isEnabled() ? mOrvelDRR : nullptr;
}

// What the hooks call; each forwards to the member of the same stem.
#define ORVEL_FORWARD_TO_DRR(name, member, params, args)                                                               \
    inline void name params {                                                                                          \
        if (orvel::OrvelDRR* drr = usableDRR()) {                                                                      \
            drr->member args;                                                                                          \
        }                                                                                                              \
    }
ORVEL_FORWARD_TO_DRR(drrModifySizeParams, modifySizeParams, (int& w, int& h), (w, h))
ORVEL_FORWARD_TO_DRR(drrMarkCurrentFramebuffer, markCurrentFramebuffer, (unsigned target, unsigned fb), (target, fb))
ORVEL_FORWARD_TO_DRR(drrUpdateFramebufferDetailMap, updateFramebufferDetailMap, (unsigned attachment, unsigned& tex),
                     (attachment, tex))
ORVEL_FORWARD_TO_DRR(drrModifyBindedTexture, modifyBindedTexture, (unsigned& tex), (tex))
ORVEL_FORWARD_TO_DRR(drrMarkCurrentTexture, markCurrentTexture, (unsigned target, unsigned tex), (target, tex))
ORVEL_FORWARD_TO_DRR(drrDeleteTextures, deleteTextures, (int n, const unsigned* ids), (n, ids))
ORVEL_FORWARD_TO_DRR(drrDeleteFramebuffers, deleteFramebuffers, (int n, const unsigned* ids), (n, ids))
ORVEL_FORWARD_TO_DRR(drrOnEglSwapBuffersEnd, onEglSwapBuffersEnd, (), ())
ORVEL_FORWARD_TO_DRR(drrModifyShaderUniform4fv_1, modifyShaderUniform4fv_1, (int location, float* v), (location, v))
ORVEL_FORWARD_TO_DRR(drrMarkCurrentProgram, markCurrentProgram, (unsigned program), (program))
ORVEL_FORWARD_TO_DRR(drrActiveTexture, activeTexture, (unsigned unit), (unit))
ORVEL_FORWARD_TO_DRR(drrMarkLabelObject, markLabelObject, (unsigned object, const char* label), (object, label))
#undef ORVEL_FORWARD_TO_DRR

/** Records a render target that is being allocated, unless its size is an illegal one. */
inline void drrUpdateTexDetailMap(unsigned format, int w, int h) {
    orvel::OrvelDRR* drr = usableDRR();
    if (drr && !drr->checkIllegalSize(w, h)) {
        drr->updateTexDetailMap(format, w, h);
    }
}

} // namespace android
