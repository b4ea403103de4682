// Pictures of which pixels of a frame were drawn at which rate.
#pragma once

#include "Entries.h"
#include "RateCode.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace android::rig {

/** @return whether the current context has GLES 3.1 or more */
bool isGles31(const GlTable& driver);

/** A texture of rate codes. */
struct RateImage {
    GLuint texture = 0;
    uint32_t width = 0; // texels; 0 when the driver cannot be asked
    uint32_t height = 0;
};

/** What decides a draw's rate, beside the texels of the image. */
struct DrawRate {
    RateCode rate = kRate1x1;                                             // before the image
    GLenum imageCombiner = GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT; // how the image's rate changes it
    RateImage image;
};

/**
 * One context's targets of one frame. Each draw is repeated into a target of the rig's own, with the game's shaders and
 * depth test, where the stencil takes the rate instead of the colour; the game's target is not touched. Needs GLES 3.1
 * and GL_NV_read_stencil. All calls on the context's thread.
 */
class RateView {
public:
    explicit RateView(const GlTable& driver) : mDriver(driver) {}

    /** Notes what a draw covers. @param draw does it once more */
    void cover(GLuint framebuffer, const DrawRate& rate, const std::function<void()>& draw);
    /** The game cleared depth. */
    void clearDepth(GLuint framebuffer);
    /**
     * Writes <path>-framebuffer-N.png and .json for each target that was drawn to, and <path>-framebuffer-N-image.png
     * if its rates came from an image, too. Begins anew.
     */
    void write(const std::string& path);

private:
    struct Target {
        GLuint framebuffer = 0;
        GLuint storage = 0;
        uint32_t width = 0;
        uint32_t height = 0;
        RateImage image; // the last that a draw took its rates from
        bool isDrawn = false;
    };
    class Scope;
    class ReadScope;

    bool isSupported();
    Target& targetOf(GLuint framebuffer);
    void grow(Target& target, uint32_t width, uint32_t height);
    std::vector<uint8_t> readRates(const Target& target) const;
    std::vector<uint32_t> readImage(const RateImage& image) const;
    std::vector<uint8_t> picture(const Target& target, const std::vector<uint32_t>& texels) const;
    void writeTarget(const std::string& path, const Target& target) const;

    const GlTable& mDriver;
    std::map<GLuint, Target> mTargets; // by the game's framebuffer
    bool mIsAsked = false;
    bool mIsSupported = false;
};

} // namespace android::rig
