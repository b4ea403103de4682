#include "app/games/sgame/OrvelSGameRateImage.h"

#include "app/games/sgame/OrvelSGameVRSModuleData.h"
#include "app/games/sgame/ShadingRateTemplates.h"
#include "base/OrvelLog.h"
#include "next/OrvelNext.h"
#include "next/OrvelPixelStore.h"

namespace android::orvel::app::module {

namespace {

constexpr int32_t kPixelsPerTexel = 8;
constexpr int32_t kMostTexels = 4096; // a side; more is no screen but a wrong number

// How many codes of a level's region part its contents take, the two for multisampled targets behind the others.
constexpr size_t kTwoRingCodes = 2;
constexpr size_t kThreeRingCodes = 3;

constexpr bool hasThreeRings(uint32_t index) { return index % 2 != 0; } // level 2
constexpr int32_t levelOf(uint32_t index) { return hasThreeRings(index) ? 2 : 1; }

/** What the game has bound; after this object it is bound again. */
class GameBindings {
public:
    GameBindings() = default;
    GameBindings(const GameBindings&) = delete;
    GameBindings& operator=(const GameBindings&) = delete;
    ~GameBindings() {
        if (Bound(GL_PIXEL_UNPACK_BUFFER_BINDING) != mBuffer) {
            next::gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, mBuffer);
        }
        if (Bound(GL_TEXTURE_BINDING_2D) != mTexture) {
            next::gl.glBindTexture(GL_TEXTURE_2D, mTexture);
        }
    }

private:
    static GLuint Bound(GLenum binding) {
        GLint name = 0;
        next::gl.glGetIntegerv(binding, &name);
        return static_cast<GLuint>(name);
    }

    const GLuint mTexture = Bound(GL_TEXTURE_BINDING_2D);
    const GLuint mBuffer = Bound(GL_PIXEL_UNPACK_BUFFER_BINDING);
};

/** @return the image that belongs to the target's size; of no size, so that it is never made, for an absurd one */
ShadingRateImageInfo imageFor(const OrvelSGameVRSModuleData& data) {
    const int32_t width = data.mTargetWidth / kPixelsPerTexel;
    const int32_t height = data.mTargetHeight / kPixelsPerTexel;
    if (width < 1 || width > kMostTexels || height < 1 || height > kMostTexels) {
        ORVEL_LOGE("no shading-rate image for a target of %dx%d", data.mTargetWidth, data.mTargetHeight);
        return {};
    }
    return {0, width, height};
}

} // namespace

OrvelSGameRateImage::OrvelSGameRateImage(const OrvelSGameVRSModuleData& data)
    : mData(data),
      mRateImage(imageFor(data)) {}

void OrvelSGameRateImage::initPerRegionPBOs(uint64_t frameId) {
    const auto index = static_cast<uint32_t>(frameId % kTemplates);
    const size_t needed = 2 * (hasThreeRings(index) ? kThreeRingCodes : kTwoRingCodes);
    GLuint& buffer = mTemplateBuffers[index];
    if (buffer != 0 || mRateImage.width == 0 || mData.GetRegionRates(levelOf(index)).size() < needed) {
        return;
    }
    const GameBindings bindings;
    auto& component = VRSComponent::GetInstance();
    void* const texels = component.CreatePixBufferObj(buffer, mRateImage.width * mRateImage.height);
    if (!texels) { // said once: the buffer's name stays, so it is not tried again
        ORVEL_LOGE("shading-rate template %d cannot be mapped", static_cast<int>(index));
        next::gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        return;
    }
    FillTemplate(static_cast<uint8_t*>(texels), index);
    component.UnmapPixBufferObj(buffer);
    ++mTemplatesCreated;
}

void OrvelSGameRateImage::FillTemplate(uint8_t* texels, uint32_t index) const {
    const TemplateShape shape{mRateImage.width, mRateImage.height, mData.mMapRectX, mData.mMapRectY};
    const std::vector<uint8_t>& codes = mData.GetRegionRates(levelOf(index));
    if (hasThreeRings(index)) {
        const uint8_t* const own = &codes[kThreeRingCodes * (index / 2)];
        fillThreeRings(texels, shape, own[0], own[1], own[2]);
    } else {
        const uint8_t* const own = &codes[kTwoRingCodes * (index / 2)];
        fillTwoRings(texels, shape, own[0], own[1]);
    }
}

void OrvelSGameRateImage::Attach(GLenum target, GLuint framebuffer, GLuint colorTexture, bool multisampled,
                                 int32_t level, GLuint restoreTexture) {
    mMultisample = multisampled ? 1 : 0;
    if (mFramebuffer.colorTexture != colorTexture) {
        mFramebuffer.width = mFramebuffer.height = 0; // to be asked for again
    }
    mFramebuffer.framebuffer = framebuffer;
    mFramebuffer.colorTexture = colorTexture;
    const GameBindings bindings;
    if (VRSComponent::GetInstance().CreateVRSFramebuffer(target, restoreTexture, mFramebuffer, mRateImage)) {
        UploadTemplate(level, restoreTexture);
    }
}

void OrvelSGameRateImage::Upload(int32_t level, GLuint restoreTexture) {
    if (mRateImage.texture == 0) {
        return;
    }
    const GameBindings bindings;
    UploadTemplate(level, restoreTexture);
}

void OrvelSGameRateImage::UploadTemplate(int32_t level, GLuint restoreTexture) {
    if (!TemplatesReady() || mRateImage.texture == 0 || level < 1 || level > 2) {
        return;
    }
    const GLuint buffer = mTemplateBuffers[2 * mMultisample + static_cast<uint32_t>(level - 1)];
    const next::OrvelPixelStoreScope rows(next::OrvelPixelStoreScope::FROM_BUFFER);
    VRSComponent::GetInstance().UpdateShadingRateImageWithPBO(mRateImage.texture, buffer, restoreTexture,
                                                              mRateImage.width, mRateImage.height);
}

} // namespace android::orvel::app::module
