// Variable-rate shading for the games' modules, over whichever of the two GL extensions the driver has.
#pragma once

#include "base/ShadingRateEnums.h"

#include <EGL/egldefs.h>

#include <cstdint>
#include <functional>
#include <string>

namespace android::orvel::app {

/** A GL_R8UI texture with one rate code a texel (code values: GL_EXT_fragment_shading_rate). */
struct ShadingRateImageInfo {
    GLuint texture = 0;
    int32_t width = 0; // texels
    int32_t height = 0;
};

struct FrameBufferInfo {
    GLuint framebuffer = 0;
    GLuint colorTexture = 0;
    int32_t width = 0; // pixels; 0 until asked for
    int32_t height = 0;
};

/**
 * For threads with a current GL context. The driver's entries are resolved by the check of the modules' extension
 * functions, so the instance must not be asked for before.
 *
 * An upload reads tightly packed rows: the caller sees to the context's pixel-store state and, where the data comes
 * from memory, to the pixel buffer that the game may have bound. restoreTexture is bound to GL_TEXTURE_2D after an
 * upload.
 */
class VRSComponent {
public:
    /** Constructed on first use; it then prefers GL_EXT_fragment_shading_rate. */
    static VRSComponent& GetInstance();

    /** Chooses between the entries that are resolved by now. */
    void Init();

    /** @return whether the driver takes shading-rate images */
    bool SupportsShadingRateImage() const { return mIsExt; }

    /** Sets the rate of the draws that follow; without an entry it does nothing. @param rate GL_SHADING_RATE_..._EXT */
    void SetShadingRate(GLenum rate);

    /**
     * Makes the texture; GL_TEXTURE_2D has no texture bound afterwards.
     * @return false for a size below 1x1; true, and nothing made, when the driver takes no images
     */
    bool CreateShadingrateImage(ShadingRateImageInfo& image);

    /**
     * Attaches an image, made first if it has no texture, to the framebuffer bound to target.
     * @param restoreTexture bound to GL_TEXTURE_2D again after the colour texture's size was asked for
     * @return whether it was attached
     */
    bool CreateVRSFramebuffer(GLenum target, GLuint restoreTexture, FrameBufferInfo& framebuffer,
                              ShadingRateImageInfo& image);

    /** Fills the whole image with one code. @param scratch room for width * height bytes */
    bool UpdateShadingRateImageWithVal(GLuint image, uint8_t* scratch, GLuint restoreTexture, int width, int height,
                                       uint8_t value);
    /** @param data width * height bytes, row 0 (t = 0) first */
    bool UpdateShadingRateImageWithData(GLuint image, uint8_t* data, GLuint restoreTexture, int width, int height);
    /** Uploads from the start of a pixel buffer; afterwards none is bound. */
    bool UpdateShadingRateImageWithPBO(GLuint image, GLuint pbo, GLuint restoreTexture, int width, int height);

    /** Makes a pixel buffer, which stays bound. @return its memory for writing, or null when mapping failed */
    void* CreatePixBufferObj(GLuint& pbo, int size);
    /** Unmaps the buffer that CreatePixBufferObj() left bound; afterwards none is bound. */
    void UnmapPixBufferObj(GLuint pbo);

    /**
     * Tells whether a module that needs this function must go. Asked for one function after the other: a module lives
     * while the driver has one of the two extensions. Each GL_EXT_fragment_shading_rate function overwrites what the
     * one before it said of the extension, deliberately.
     */
    static bool checkQcomExtRemoved(const std::string& name, const std::function<bool(const std::string&)>& isMissing);

private:
    VRSComponent();

    void(GL_APIENTRY* mSetShadingRate)(GLenum rate) = nullptr;
    bool mIsExt = false;
    bool mHasQcom = false;

    static bool sQcomMissing;
    static bool sExtMissing;
};

} // namespace android::orvel::app
