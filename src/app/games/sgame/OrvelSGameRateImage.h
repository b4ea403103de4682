// The rate image of the scene's main colour target, and ready-made contents for it.
#pragma once

#include "app/VRSComponent.h"

#include <EGL/egldefs.h>

#include <array>
#include <cstdint>

namespace android::orvel::app::module {

class OrvelSGameVRSModuleData;

/**
 * One texel for 8x8 pixels. There are four contents, so that an upload needs no work of ours: for level 1 and 2, each
 * for a target that is not multisampled and one that is. What the game had bound is bound again after every call.
 * GL objects are never deleted: they go with the context.
 */
class OrvelSGameRateImage {
public:
    /** @param data outlives this object */
    explicit OrvelSGameRateImage(const OrvelSGameVRSModuleData& data);

    /** Makes one of the contents, another one with each frame, unless it is there already. */
    void initPerRegionPBOs(uint64_t frameId);
    bool TemplatesReady() const { return mTemplatesCreated == kTemplates; }

    /**
     * Attaches the image, made at the first time, to the framebuffer bound to target, and fills it for that level.
     * @param restoreTexture see VRSComponent
     */
    void Attach(GLenum target, GLuint framebuffer, GLuint colorTexture, bool multisampled, int32_t level,
                GLuint restoreTexture);
    /** Fills the image, once it is there and all contents are, for level 1 or 2; no other level changes it. */
    void Upload(int32_t level, GLuint restoreTexture);

private:
    static constexpr uint32_t kTemplates = 4;

    void FillTemplate(uint8_t* texels, uint32_t index) const;
    void UploadTemplate(int32_t level, GLuint restoreTexture);

    const OrvelSGameVRSModuleData& mData;
    ShadingRateImageInfo mRateImage;
    FrameBufferInfo mFramebuffer;
    std::array<GLuint, kTemplates> mTemplateBuffers{}; // at 2 * mMultisample + (level - 1); 0 until its turn comes
    uint32_t mTemplatesCreated = 0;                    // how many of them are filled
    uint32_t mMultisample = 0;                         // 1: the target attached last is multisampled
};

} // namespace android::orvel::app::module
