#include "app/VRSComponent.h"

#include "next/OrvelNext.h"

#include <cstring>
#include <string_view>

namespace android::orvel::app {

namespace {

// Deliberately fixed, whatever the size of the image.
constexpr GLsizei kTexelWidth = 2;
constexpr GLsizei kTexelHeight = 2;

bool isShadingRateExt(std::string_view name) { // .*ShadingRate.*EXT
    constexpr std::string_view kRate = "ShadingRate";
    constexpr std::string_view kSuffix = "EXT";
    const size_t rate = name.find(kRate);
    return rate != name.npos && name.substr(rate + kRate.size()).ends_with(kSuffix);
}

void upload(GLuint image, const void* source, GLuint restoreTexture, int width, int height) {
    next::gl.glBindTexture(GL_TEXTURE_2D, image);
    next::gl.glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, GL_RED_INTEGER, GL_UNSIGNED_BYTE, source);
    next::gl.glBindTexture(GL_TEXTURE_2D, restoreTexture);
}

} // namespace

bool VRSComponent::sQcomMissing = false;
bool VRSComponent::sExtMissing = false;

VRSComponent& VRSComponent::GetInstance() {
    static VRSComponent instance;
    return instance;
}

VRSComponent::VRSComponent() { Init(); }

void VRSComponent::Init() {
    mIsExt = next::ext.glShadingRateEXT != nullptr;
    mSetShadingRate = mIsExt ? next::ext.glShadingRateEXT : next::ext.glShadingRateQCOM;
    mHasQcom = !mIsExt && mSetShadingRate;
}

void VRSComponent::SetShadingRate(GLenum rate) {
    if (mSetShadingRate) {
        mSetShadingRate(rate);
    }
}

bool VRSComponent::CreateShadingrateImage(ShadingRateImageInfo& image) {
    if (!mIsExt) {
        return true;
    }
    if (image.width < 1 || image.height < 1) {
        return false;
    }
    next::gl.glGenTextures(1, &image.texture);
    next::gl.glBindTexture(GL_TEXTURE_2D, image.texture);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR); // never sampled: integers have no filter
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    next::gl.glTexStorage2D(GL_TEXTURE_2D, 1, GL_R8UI, image.width, image.height);
    next::gl.glBindTexture(GL_TEXTURE_2D, 0);
    return true;
}

bool VRSComponent::CreateVRSFramebuffer(GLenum target, GLuint restoreTexture, FrameBufferInfo& framebuffer,
                                        ShadingRateImageInfo& image) {
    if (!mIsExt || !next::ext.glFramebufferShadingRateEXT) {
        return false;
    }
    if (framebuffer.width == 0 && framebuffer.height == 0) {
        next::gl.glBindTexture(GL_TEXTURE_2D, framebuffer.colorTexture);
        next::gl.glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &framebuffer.width);
        next::gl.glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &framebuffer.height);
        next::gl.glBindTexture(GL_TEXTURE_2D, restoreTexture);
    }
    if (image.texture == 0 && !CreateShadingrateImage(image)) {
        return false;
    }
    next::ext.glFramebufferShadingRateEXT(target, GL_SHADING_RATE_ATTACHMENT_EXT, image.texture, 0, 1, kTexelWidth,
                                          kTexelHeight);
    return true;
}

bool VRSComponent::UpdateShadingRateImageWithVal(GLuint image, uint8_t* scratch, GLuint restoreTexture, int width,
                                                 int height, uint8_t value) {
    const int64_t texels = int64_t{width} * height;
    if (image == 0 || !scratch || texels < 0) {
        return false;
    }
    std::memset(scratch, value, static_cast<size_t>(texels));
    upload(image, scratch, restoreTexture, width, height);
    return true;
}

bool VRSComponent::UpdateShadingRateImageWithData(GLuint image, uint8_t* data, GLuint restoreTexture, int width,
                                                  int height) {
    if (image == 0 || !data) {
        return false;
    }
    upload(image, data, restoreTexture, width, height);
    return true;
}

bool VRSComponent::UpdateShadingRateImageWithPBO(GLuint image, GLuint pbo, GLuint restoreTexture, int width,
                                                 int height) {
    if (image == 0 || pbo == 0) {
        return false;
    }
    next::gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pbo);
    upload(image, nullptr, restoreTexture, width, height);
    next::gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    return true;
}

void* VRSComponent::CreatePixBufferObj(GLuint& pbo, int size) {
    next::gl.glGenBuffers(1, &pbo);
    next::gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pbo);
    next::gl.glBufferData(GL_PIXEL_UNPACK_BUFFER, size, nullptr, GL_DYNAMIC_DRAW);
    return next::gl.glMapBufferRange(GL_PIXEL_UNPACK_BUFFER, 0, size, GL_MAP_WRITE_BIT);
}

void VRSComponent::UnmapPixBufferObj(GLuint pbo) {
    if (pbo != 0) {
        next::gl.glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER);
        next::gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    }
}

bool VRSComponent::checkQcomExtRemoved(const std::string& name,
                                       const std::function<bool(const std::string&)>& isMissing) {
    const bool missing = isMissing(name);
    if (name == "glShadingRateQCOM") {
        sQcomMissing = missing;
    } else if (isShadingRateExt(name)) {
        sExtMissing = missing;
    } else if (missing) {
        return true;
    }
    return sQcomMissing && sExtMissing;
}

} // namespace android::orvel::app
