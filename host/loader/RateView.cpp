#include "RateView.h"

#include "LogFile.h"
#include "PngFile.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace android::rig {

namespace {

// A pixel of the stencil: drawn, the image's combiner, the rate before the image.
constexpr uint8_t kDrawn = 0x80;
constexpr int kCombinerShift = 4;
constexpr uint8_t kCombinerMask = 0x7;
constexpr uint8_t kRateMask = 0xF;

constexpr GLenum kCombiners[] = {
    GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT, GL_FRAGMENT_SHADING_RATE_COMBINER_OP_REPLACE_EXT,
    GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MIN_EXT,  GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MAX_EXT,
    GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MUL_EXT,
};

uint8_t stencilOf(const DrawRate& rate) {
    uint8_t combiner = 0;
    for (uint8_t i = 0; i < std::size(kCombiners); ++i) {
        combiner = kCombiners[i] == rate.imageCombiner ? i : combiner;
    }
    return static_cast<uint8_t>(kDrawn | combiner << kCombinerShift | rate.rate);
}

/** Colour 0 where nothing was drawn, 1 + code for each rate: the fewer fragments, the warmer. */
std::vector<Colour> palette() {
    constexpr Colour kByPixels[] = {{40, 150, 60}, {150, 200, 50}, {245, 215, 60}, {240, 140, 40}, {205, 45, 40}};
    std::vector<Colour> colours = {{32, 32, 40}};
    for (RateCode code = 0; code < kRateCodes; ++code) {
        Colour colour = kByPixels[log2Width(code) + log2Height(code)];
        if (log2Height(code) > log2Width(code)) { // higher than wide: with a touch of blue
            colour[2] = static_cast<uint8_t>(colour[2] + 100);
        }
        colours.push_back(colour);
    }
    return colours;
}

} // namespace

bool isGles31(const GlTable& driver) {
    const auto* version = reinterpret_cast<const char*>(driver.glGetString(GL_VERSION));
    int major = 0;
    int minor = 0;
    return version && std::sscanf(version, "OpenGL ES %d.%d", &major, &minor) == 2 &&
           (major > 3 || (major == 3 && minor >= 1));
}

/** The game's state that the view changes; it binds the view's framebuffer first, since queries depend on it. */
class RateView::Scope {
public:
    Scope(const GlTable& driver, GLuint framebuffer) : mDriver(driver) {
        mDraw = ask(GL_DRAW_FRAMEBUFFER_BINDING);
        mDriver.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
        mStencil = mDriver.glIsEnabled(GL_STENCIL_TEST);
        mScissor = mDriver.glIsEnabled(GL_SCISSOR_TEST);
        mDriver.glGetBooleanv(GL_DEPTH_WRITEMASK, &mDepthMask);
        for (Face& face : mFaces) {
            const auto of = [&](GLenum front, GLenum back) { return ask(face.face == GL_FRONT ? front : back); };
            face.function = of(GL_STENCIL_FUNC, GL_STENCIL_BACK_FUNC);
            face.reference = static_cast<GLint>(of(GL_STENCIL_REF, GL_STENCIL_BACK_REF));
            face.valueMask = of(GL_STENCIL_VALUE_MASK, GL_STENCIL_BACK_VALUE_MASK);
            face.fail = of(GL_STENCIL_FAIL, GL_STENCIL_BACK_FAIL);
            face.depthFail = of(GL_STENCIL_PASS_DEPTH_FAIL, GL_STENCIL_BACK_PASS_DEPTH_FAIL);
            face.pass = of(GL_STENCIL_PASS_DEPTH_PASS, GL_STENCIL_BACK_PASS_DEPTH_PASS);
            face.writeMask = of(GL_STENCIL_WRITEMASK, GL_STENCIL_BACK_WRITEMASK);
        }
    }

    ~Scope() {
        for (const Face& face : mFaces) {
            mDriver.glStencilFuncSeparate(face.face, face.function, face.reference, face.valueMask);
            mDriver.glStencilOpSeparate(face.face, face.fail, face.depthFail, face.pass);
            mDriver.glStencilMaskSeparate(face.face, face.writeMask);
        }
        mDriver.glDepthMask(mDepthMask);
        enable(GL_SCISSOR_TEST, mScissor);
        enable(GL_STENCIL_TEST, mStencil);
        mDriver.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, mDraw);
    }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    void enable(GLenum capability, GLboolean on) const {
        on ? mDriver.glEnable(capability) : mDriver.glDisable(capability);
    }

private:
    struct Face {
        GLenum face;
        GLenum function, fail, depthFail, pass;
        GLint reference;
        GLuint valueMask, writeMask;
    };

    GLuint ask(GLenum name) const {
        GLint value = 0;
        mDriver.glGetIntegerv(name, &value);
        return static_cast<GLuint>(value);
    }

    const GlTable& mDriver;
    GLuint mDraw;
    GLboolean mStencil, mScissor, mDepthMask = GL_TRUE;
    Face mFaces[2] = {{GL_FRONT, 0, 0, 0, 0, 0, 0, 0}, {GL_BACK, 0, 0, 0, 0, 0, 0, 0}};
};

/** While it lives, pixels are read into memory, tightly packed, and any framebuffer may be bound to read from. */
class RateView::ReadScope {
public:
    explicit ReadScope(const GlTable& driver) : mDriver(driver) {
        for (Packing& packing : mPacking) {
            mDriver.glGetIntegerv(packing.name, &packing.value);
            mDriver.glPixelStorei(packing.name, packing.name == GL_PACK_ALIGNMENT ? 1 : 0);
        }
        mDriver.glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &mBuffer);
        mDriver.glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &mFramebuffer);
        mDriver.glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    }
    ~ReadScope() {
        mDriver.glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(mFramebuffer));
        mDriver.glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(mBuffer));
        for (const Packing& packing : mPacking) {
            mDriver.glPixelStorei(packing.name, packing.value);
        }
    }
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;

private:
    struct Packing {
        GLenum name;
        GLint value;
    };

    const GlTable& mDriver;
    Packing mPacking[4] = {
        {GL_PACK_ALIGNMENT, 0}, {GL_PACK_ROW_LENGTH, 0}, {GL_PACK_SKIP_ROWS, 0}, {GL_PACK_SKIP_PIXELS, 0}};
    GLint mBuffer = 0;
    GLint mFramebuffer = 0;
};

bool RateView::isSupported() {
    if (!mIsAsked) {
        mIsAsked = true;
        const auto* extensions = reinterpret_cast<const char*>(mDriver.glGetString(GL_EXTENSIONS));
        mIsSupported = isGles31(mDriver) && extensions && std::strstr(extensions, "GL_NV_read_stencil");
        if (!mIsSupported) {
            RIG_LOGE("no pictures of shading rates: they need GLES 3.1 and GL_NV_read_stencil");
        }
    }
    return mIsSupported;
}

/** @return the view's target, at least as large as the viewport */
RateView::Target& RateView::targetOf(GLuint framebuffer) {
    GLint viewport[4] = {};
    mDriver.glGetIntegerv(GL_VIEWPORT, viewport);
    Target& target = mTargets[framebuffer];
    const auto width = static_cast<uint32_t>(std::max(viewport[0] + viewport[2], 1));
    const auto height = static_cast<uint32_t>(std::max(viewport[1] + viewport[3], 1));
    if (width > target.width || height > target.height) {
        grow(target, std::max(width, target.width), std::max(height, target.height));
    }
    return target;
}

void RateView::grow(Target& target, uint32_t width, uint32_t height) {
    const Target old = target;
    GLint renderbuffer = 0;
    GLint readFramebuffer = 0;
    mDriver.glGetIntegerv(GL_RENDERBUFFER_BINDING, &renderbuffer);
    mDriver.glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &readFramebuffer);
    mDriver.glGenFramebuffers(1, &target.framebuffer);
    mDriver.glGenRenderbuffers(1, &target.storage);
    target.width = width;
    target.height = height;
    mDriver.glBindRenderbuffer(GL_RENDERBUFFER, target.storage);
    mDriver.glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH24_STENCIL8, static_cast<GLsizei>(width),
                                  static_cast<GLsizei>(height));
    mDriver.glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(renderbuffer));
    {
        const Scope scope(mDriver, target.framebuffer);
        mDriver.glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER,
                                          target.storage);
        scope.enable(GL_SCISSOR_TEST, GL_FALSE);
        mDriver.glDepthMask(GL_TRUE);
        mDriver.glStencilMask(~0u);
        mDriver.glClearBufferfi(GL_DEPTH_STENCIL, 0, 1.0f, 0);
        if (old.framebuffer) {
            mDriver.glBindFramebuffer(GL_READ_FRAMEBUFFER, old.framebuffer);
            const auto right = static_cast<GLint>(old.width);
            const auto top = static_cast<GLint>(old.height);
            mDriver.glBlitFramebuffer(0, 0, right, top, 0, 0, right, top, GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT,
                                      GL_NEAREST);
            mDriver.glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(readFramebuffer));
        }
    }
    if (old.framebuffer) {
        mDriver.glDeleteFramebuffers(1, &old.framebuffer);
        mDriver.glDeleteRenderbuffers(1, &old.storage);
    }
}

/** @return whether an occlusion query is under way */
static bool isCounted(const GlTable& driver) {
    GLint any = 0;
    GLint conservative = 0;
    driver.glGetQueryiv(GL_ANY_SAMPLES_PASSED, GL_CURRENT_QUERY, &any);
    driver.glGetQueryiv(GL_ANY_SAMPLES_PASSED_CONSERVATIVE, GL_CURRENT_QUERY, &conservative);
    return any != 0 || conservative != 0;
}

void RateView::cover(GLuint framebuffer, const DrawRate& rate, const std::function<void()>& draw) {
    if (!isSupported()) {
        return;
    }
    GLboolean feedback = GL_FALSE;
    mDriver.glGetBooleanv(GL_TRANSFORM_FEEDBACK_ACTIVE, &feedback);
    if (feedback || isCounted(mDriver)) {
        return; // the game's buffers would get the vertices twice, its queries the samples
    }
    Target& target = targetOf(framebuffer);
    const Scope scope(mDriver, target.framebuffer);
    scope.enable(GL_STENCIL_TEST, GL_TRUE);
    mDriver.glStencilFunc(GL_ALWAYS, stencilOf(rate), ~0u);
    mDriver.glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    mDriver.glStencilMask(~0u);
    draw();
    target.isDrawn = true;
    if (rate.image.texture) {
        target.image = rate.image;
    }
}

void RateView::clearDepth(GLuint framebuffer) {
    if (isSupported()) {
        const Scope scope(mDriver, targetOf(framebuffer).framebuffer);
        mDriver.glClear(GL_DEPTH_BUFFER_BIT); // with the game's scissor and value
    }
}

/** @return the stencil's values, the lowest row first */
std::vector<uint8_t> RateView::readRates(const Target& target) const {
    std::vector<uint8_t> pixels(size_t{target.width} * target.height);
    mDriver.glBindFramebuffer(GL_READ_FRAMEBUFFER, target.framebuffer);
    mDriver.glReadPixels(0, 0, static_cast<GLsizei>(target.width), static_cast<GLsizei>(target.height),
                         GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

/** @return four numbers a texel, the first of which is the code; nothing for a texture that cannot be read */
std::vector<uint32_t> RateView::readImage(const RateImage& image) const {
    std::vector<uint32_t> texels;
    if (image.width == 0 || image.height == 0 || !mDriver.glIsTexture(image.texture)) {
        return texels;
    }
    GLuint framebuffer = 0;
    mDriver.glGenFramebuffers(1, &framebuffer);
    mDriver.glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
    mDriver.glFramebufferTexture2D(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, image.texture, 0);
    if (mDriver.glCheckFramebufferStatus(GL_READ_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE) {
        texels.resize(size_t{image.width} * image.height * 4);
        mDriver.glReadPixels(0, 0, static_cast<GLsizei>(image.width), static_cast<GLsizei>(image.height),
                             GL_RGBA_INTEGER, GL_UNSIGNED_INT, texels.data());
    }
    mDriver.glDeleteFramebuffers(1, &framebuffer);
    return texels;
}

/** @return indices into the palette, the lowest row first */
std::vector<uint8_t> RateView::picture(const Target& target, const std::vector<uint32_t>& texels) const {
    std::vector<uint8_t> pixels = readRates(target);
    // The image is laid over the whole target, whatever size its texels are said to have.
    const auto texelAt = [&](size_t pixel) {
        const size_t column = pixel % target.width * target.image.width / target.width;
        const size_t row = pixel / target.width * target.image.height / target.height;
        return static_cast<RateCode>(texels[(row * target.image.width + column) * 4] & kRateMask);
    };
    for (size_t i = 0; i < pixels.size(); ++i) {
        const uint8_t pixel = pixels[i];
        RateCode rate = pixel & kRateMask;
        const size_t combiner = pixel >> kCombinerShift & kCombinerMask;
        if (combiner < std::size(kCombiners) && !texels.empty()) {
            rate = combine(kCombiners[combiner], rate, texelAt(i));
        }
        pixels[i] = pixel & kDrawn ? static_cast<uint8_t>(1 + rate) : 0;
    }
    return pixels;
}

/** One line of JSON: how many of a target's pixels have which rate, and what share of 1x1's fragments that saves. */
static bool writeCounts(const std::string& path, const std::vector<uint8_t>& pixels) {
    std::array<size_t, kRateCodes + 1> counts{};
    for (const uint8_t pixel : pixels) {
        ++counts[pixel];
    }
    std::map<std::string, size_t> byRate; // several codes mean the same rate
    size_t drawn = 0;
    double fragments = 0;
    for (RateCode code = 0; code < kRateCodes; ++code) {
        const size_t count = counts[size_t{code} + 1];
        if (count != 0) {
            byRate[textOf(code)] += count;
            drawn += count;
            fragments += static_cast<double>(count) / (1 << (log2Width(code) + log2Height(code)));
        }
    }
    std::string rates;
    for (const auto& [rate, count] : byRate) {
        rates += (rates.empty() ? "\"" : ", \"") + rate + "\": " + std::to_string(count);
    }
    std::ofstream file(path);
    file << "{\"undrawn\": " << counts[0] << ", \"pixels\": {" << rates
         << "}, \"saved\": " << (drawn ? 1 - fragments / static_cast<double>(drawn) : 0) << "}\n";
    return static_cast<bool>(file);
}

void RateView::writeTarget(const std::string& path, const Target& target) const {
    const std::vector<uint32_t> texels = readImage(target.image);
    const std::vector<uint8_t> pixels = picture(target, texels);
    bool isWritten =
        writePng(path + ".png", target.width, target.height, pixels, palette()) && writeCounts(path + ".json", pixels);
    if (!texels.empty()) {
        std::vector<uint8_t> image(texels.size() / 4);
        for (size_t i = 0; i < image.size(); ++i) {
            image[i] = static_cast<uint8_t>(1 + (texels[i * 4] & kRateMask));
        }
        isWritten &= writePng(path + "-image.png", target.image.width, target.image.height, image, palette());
    }
    if (!isWritten) {
        RIG_LOGE("cannot write %s.png and what belongs to it", path.c_str());
    }
}

void RateView::write(const std::string& path) {
    if (mTargets.empty()) {
        return;
    }
    const ReadScope scope(mDriver);
    for (const auto& [framebuffer, target] : mTargets) {
        if (target.isDrawn) {
            writeTarget(path + "-framebuffer-" + std::to_string(framebuffer), target);
        }
        mDriver.glDeleteFramebuffers(1, &target.framebuffer);
        mDriver.glDeleteRenderbuffers(1, &target.storage);
    }
    mTargets.clear();
}

} // namespace android::rig
