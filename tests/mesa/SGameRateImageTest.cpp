// The rate image of the battle scene as a driver has it after the upload, whatever the game has set and bound.
#include "app/games/sgame/OrvelSGameRateImage.h"

#include "MesaContext.h"
#include "app/games/sgame/OrvelSGameVRSModuleData.h"
#include "app/games/sgame/ShadingRateTemplates.h"

#include <gtest/gtest.h>
#include <json/value.h>

#include <utility>
#include <vector>

using namespace android::orvel;
using namespace android::orvel::app;
using namespace android::orvel::app::module;

namespace {

constexpr int kWidth = 277; // rows of a length that no alignment but 1 fits
constexpr int kHeight = 116;

GLuint sAttached = 0;

/** Stands for the extension, which Mesa lacks. */
void offerRateImages() {
    next::ext.glShadingRateEXT = [](GLenum) {};
    next::ext.glFramebufferShadingRateEXT = [](GLenum, GLenum, GLuint texture, GLint, GLsizei, GLsizei, GLsizei) {
        sAttached = texture;
    };
    VRSComponent::GetInstance().Init();
}

OrvelSGameVRSModuleData parameters() {
    Json::Value json;
    json["vrs_LabelInfo"] = "far#f_.*";
    json["vrs_LabelLevel"] = "1#44:far$44,22,12,42;2#44:far$12,22,42,44,12,22";
    return OrvelSGameVRSModuleData(json);
}

GLint valueOf(GLenum name) {
    GLint value = -1;
    glGetIntegerv(name, &value);
    return value;
}

std::vector<uint8_t> readImage(GLuint image) {
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, image, 0);
    std::vector<GLuint> read(size_t{4} * kWidth * kHeight);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA_INTEGER, GL_UNSIGNED_INT, read.data());
    glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer);
    std::vector<uint8_t> red;
    for (size_t i = 0; i < read.size(); i += 4) {
        red.push_back(static_cast<uint8_t>(read[i]));
    }
    return red;
}

// Catches rows that are read by the game's layout or from the game's buffer, another template than the level's, state
// of the game that is not put back, and GL errors that it would see.
TEST(SGameRateImage, HoldsTheTemplateWhateverTheGameHasSet) {
    const MesaContext context;
    offerRateImages();
    const OrvelSGameVRSModuleData data = parameters();
    ASSERT_TRUE(data.valid);
    OrvelSGameRateImage image(data);
    const GLuint color = MesaContext::makeTexture(64, 32);
    const GLuint bound = MesaContext::makeTexture(4, 4);
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer);
    glBufferData(GL_PIXEL_UNPACK_BUFFER, 16, nullptr, GL_STATIC_DRAW);
    const std::pair<GLenum, GLint> game[] = {
        {GL_UNPACK_ALIGNMENT, 8},   {GL_UNPACK_ROW_LENGTH, 500},    {GL_UNPACK_SKIP_ROWS, 3},
        {GL_UNPACK_SKIP_PIXELS, 5}, {GL_TEXTURE_BINDING_2D, bound}, {GL_PIXEL_UNPACK_BUFFER_BINDING, buffer},
    };
    for (size_t i = 0; i < 4; ++i) {
        glPixelStorei(game[i].first, game[i].second);
    }
    const auto expectImage = [&](bool threeRings, uint8_t a, uint8_t b, uint8_t c) {
        for (const auto& [name, value] : game) {
            EXPECT_EQ(valueOf(name), value) << name;
        }
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        const TemplateShape shape{kWidth, kHeight, 0.051f, 0.31f};
        std::vector<uint8_t> expected(size_t{kWidth} * kHeight);
        if (threeRings) {
            fillThreeRings(expected.data(), shape, a, b, c);
        } else {
            fillTwoRings(expected.data(), shape, a, b);
        }
        EXPECT_EQ(readImage(sAttached), expected);
    };
    for (uint64_t frame = 5; frame < 9; ++frame) {
        image.initPerRegionPBOs(frame);
    }
    ASSERT_TRUE(image.TemplatesReady());
    // The game's last texture is on another unit by now: what is bound to this one counts.
    image.Attach(GL_FRAMEBUFFER, 0, color, false, 1, color);
    ASSERT_NE(sAttached, 0u);
    expectImage(false, 10, 5, 0);
    image.Upload(2, color);
    expectImage(true, 4, 5, 6);
    image.Upload(3, color); // no template
    expectImage(true, 4, 5, 6);
    image.Attach(GL_FRAMEBUFFER, 0, color, true, 1, color);
    expectImage(false, 4, 6, 0);
    image.Upload(2, color);
    expectImage(true, 10, 4, 5);
}

} // namespace
