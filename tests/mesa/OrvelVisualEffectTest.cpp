#include "MesaContext.h"
#include "StateDump.h"
#include "base/OrvelPaths.h"
#include "next/EffectGame.h"
#include "next/OrvelStateTracker.h"
#include "next/OrvelTexture.h"
#include "next/effects/OrvelGreenEffect.h"
#include "next/effects/OrvelLutEffect.h"
#include "next/effects/OrvelLutEffectInstance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>

using namespace android;
using namespace android::orvel::next;

namespace {

constexpr int kSide = 512; // of a look-up image
constexpr int kSize = 160; // of the picture that is filtered
constexpr int kGreen = 1, kBrown = 2, kLut = 4;

using Colour = std::array<double, 4>;

Colour mix(const Colour& a, const Colour& b, double share) {
    Colour mixed;
    for (size_t i = 0; i < 4; ++i) {
        mixed[i] = a[i] + (b[i] - a[i]) * share;
    }
    return mixed;
}

/** A look-up image of curves and swapped channels. */
std::vector<uint8_t> makeLut() {
    std::vector<uint8_t> texels;
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            const double red = x % 64 / 63.0, green = y % 64 / 63.0, blue = (y / 64 * 8 + x / 64) / 63.0;
            for (const double value : {green * green, 1 - blue, 0.2 + 0.6 * red * blue}) {
                texels.push_back(static_cast<uint8_t>(std::lround(value * 255)));
            }
        }
    }
    return texels;
}

/** The filters' formulas in double precision. */
class Reference {
public:
    explicit Reference(const std::vector<uint8_t>& lut) : mLut(lut) {}

    Picture filter(const Picture& input, int type, int strength, bool darkEdge) const {
        Picture output(input.width, input.height);
        for (int y = 0; y < input.height; ++y) {
            for (int x = 0; x < input.width; ++x) {
                Colour colour;
                std::transform(input.at(x, y).begin(), input.at(x, y).end(), colour.begin(),
                               [](uint8_t value) { return value / 255.0; });
                colour = type == kGreen   ? green(colour)
                         : type == kBrown ? brown(colour)
                                          : lut(colour, strength / 100.0);
                if (darkEdge) {
                    const double u = (x + 0.5) / input.width - 0.5, v = (y + 0.5) / input.height - 0.5;
                    const double t = std::clamp((std::sqrt(u * u + v * v) - 0.35) / 0.5, 0.0, 1.0);
                    colour = mix(colour, {0, 0, 0, 0.8}, t * t * (3 - 2 * t));
                }
                std::transform(colour.begin(), colour.end(), output.at(x, y).begin(), [](double value) {
                    return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
                });
            }
        }
        return output;
    }

private:
    static Colour green(const Colour& c) {
        const double grey = 0.299 * c[0] + 0.587 * c[1] + 0.114 * c[2];
        return {grey * 0.19, grey * 0.78, grey * 0.50, c[3]};
    }
    static Colour brown(const Colour& c) {
        return {0.393 * c[0] + 0.769 * c[1] + 0.189 * c[2], 0.349 * c[0] + 0.686 * c[1] + 0.168 * c[2],
                0.272 * c[0] + 0.534 * c[1] + 0.131 * c[2], c[3]};
    }
    Colour lut(const Colour& c, double strength) const {
        const double blue = c[2] * 63;
        const Colour found = mix(tile(c, std::floor(blue)), tile(c, std::ceil(blue)), blue - std::floor(blue));
        Colour result = mix(c, mix(c, found, strength), c[3]);
        result[3] = c[3];
        return result;
    }
    Colour tile(const Colour& c, double t) const {
        const double row = std::floor(t * 0.125);
        return sample((t - 8 * row) * 0.125 + 0.000976562 + 0.123046875 * c[0],
                      row * 0.125 + 0.000976562 + 0.123046875 * c[1]);
    }
    Colour sample(double u, double v) const { // bilinear
        const double x = u * kSide - 0.5, y = v * kSide - 0.5, left = std::floor(x), top = std::floor(y);
        return mix(mix(texel(left, top), texel(left + 1, top), x - left),
                   mix(texel(left, top + 1), texel(left + 1, top + 1), x - left), y - top);
    }
    Colour texel(double x, double y) const {
        const auto clamped = [](double at) { return static_cast<size_t>(std::clamp(at, 0.0, kSide - 1.0)); };
        const uint8_t* at = &mLut[(clamped(y) * kSide + clamped(x)) * 3];
        return {at[0] / 255.0, at[1] / 255.0, at[2] / 255.0, 1};
    }

    const std::vector<uint8_t>& mLut;
};

/** Colours and alphas of all kinds. */
Picture makePicture() {
    Picture picture(kSize, kSize);
    uint32_t noise = 1;
    for (Picture::Pixel& pixel : picture.pixels) {
        for (uint8_t& value : pixel) {
            noise = noise * 1664525 + 1013904223;
            value = static_cast<uint8_t>(noise >> 24);
        }
        pixel[3] = noise >> 31 ? 255 : pixel[3];
    }
    return picture;
}

class EffectsOnMesa : public testing::Test {
protected:
    /** A framebuffer with that picture, and a manager whose resources are loaded. */
    void load(int type, int strength = 100, bool darkEdge = false, const char* types = "1;2;4;7;8") {
        mGame = std::make_unique<EffectGame>(APP_TYPE_SGAME, "0;0;0;1", types);
        mGame->writeResource("heijin.png", pngFile(kSide, kSide, PNG_COLOR_TYPE_RGB, 8, PNG_INTERLACE_NONE, mLut));
        mGame->writeResource("saibopengke.png", pngFile(3, 5, PNG_COLOR_TYPE_RGB_ALPHA));
        mManager = std::make_unique<OrvelVisualEffectManager>();
        bindPicture();
        EffectGame::choose(type, strength, darkEdge);
    }
    void bindPicture() {
        mTarget = MesaContext::makeTexture(mInput);
        GLuint framebuffer = 0;
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, mTarget, 0);
        glViewport(0, 0, kSize, kSize);
    }
    void render() {
        OrvelStateTracker tracker(true);
        mManager->Render(tracker);
    }
    Picture result() const { return MesaContext::readTexture(mTarget, kSize, kSize); }

    const MesaContext mContext;
    const std::vector<uint8_t> mLut = makeLut();
    const Picture mInput = makePicture();
    std::unique_ptr<EffectGame> mGame;
    std::unique_ptr<OrvelVisualEffectManager> mManager;
    GLuint mTarget = 0;
};

struct Filter {
    int type, strength;
    bool darkEdge;
};

void PrintTo(const Filter& filter, std::ostream* out) {
    *out << filter.type << " " << filter.strength << "%" << (filter.darkEdge ? " dark edge" : "");
}

class Colours : public EffectsOnMesa, public testing::WithParamInterface<Filter> {};

/** State that no program would leave alone: everything that an effect touches is in use, and odd. */
void setOddState() {
    GLuint names[8];
    glGenTextures(8, names);
    for (GLuint unit = 0; unit < 8; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_2D, names[unit]);
    }
    glGenSamplers(8, names);
    for (GLuint unit = 0; unit < 8; unit += 2) {
        glBindSampler(unit, names[unit]);
        glSamplerParameteri(names[unit], GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glSamplerParameteri(names[unit], GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    }
    glActiveTexture(GL_TEXTURE5);
    glGenBuffers(3, names);
    glBindBuffer(GL_ARRAY_BUFFER, names[0]);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, names[1]);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, names[2]);
    glGenVertexArrays(1, names);
    glBindVertexArray(names[0]);
    glEnableVertexAttribArray(3);
    glVertexAttribPointer(3, 2, GL_SHORT, GL_TRUE, 12, nullptr);
    for (const auto& [name, value] : {std::pair<GLenum, GLint>{GL_UNPACK_ALIGNMENT, 8},
                                      {GL_UNPACK_ROW_LENGTH, 700},
                                      {GL_UNPACK_SKIP_ROWS, 2},
                                      {GL_UNPACK_SKIP_PIXELS, 3},
                                      {GL_PACK_ALIGNMENT, 2}}) {
        glPixelStorei(name, value);
    }
    for (const GLenum cap : {GL_BLEND, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_SCISSOR_TEST, GL_SAMPLE_COVERAGE}) {
        glEnable(cap);
    }
    glDisable(GL_DITHER);
    glBlendFuncSeparate(GL_ONE, GL_DST_ALPHA, GL_ZERO, GL_SRC_COLOR);
    glBlendEquationSeparate(GL_MAX, GL_FUNC_SUBTRACT);
    glColorMask(GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
    glDepthMask(GL_FALSE);
    glDepthFunc(GL_GEQUAL);
    glStencilFuncSeparate(GL_FRONT, GL_LEQUAL, 3, 0x5A);
    glStencilOpSeparate(GL_BACK, GL_INVERT, GL_INCR, GL_DECR_WRAP);
    const char* text = "#version 310 es\nvoid main() { gl_Position = vec4(0.0); }\n";
    glUseProgram(glCreateShaderProgramv(GL_VERTEX_SHADER, 1, &text));
    glGenFramebuffers(1, names);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, names[0]);
    glScissor(1, 2, 30, 40);
    glViewport(5, 6, 70, 80);
}

} // namespace

// Catches a colour that is not the formula's, a strength or an edge that is ignored, a pixel that is left out, and an
// image that arrives distorted because of the game's pixel-store state, or is filtered by the game's sampler.
TEST_P(Colours, AreThoseOfTheFormulas) {
    const auto& [type, strength, darkEdge] = GetParam();
    load(type, strength, darkEdge);
    setOddState();
    EffectGame::load(*mManager);
    ASSERT_TRUE(mManager->EnableRender());
    {
        OrvelStateTracker tracker(true);
        for (const GLenum cap : {GL_BLEND, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_SCISSOR_TEST, GL_SAMPLE_COVERAGE}) {
            tracker.StoreEnabled(cap);
            glDisable(cap);
        }
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glViewport(0, 0, kSize, kSize);
        mManager->Render(tracker);
    }
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0); // for the test's own reading
    const Picture expected = Reference(mLut).filter(mInput, type, strength, darkEdge);
    EXPECT_LE(result().differenceTo(expected), 1);
    EXPECT_GT(expected.differenceTo(mInput), strength == 0 && !darkEdge ? -1 : 20);
}
INSTANTIATE_TEST_SUITE_P(Filters, Colours,
                         testing::Values(Filter{kGreen, 100, false}, Filter{kGreen, 30, true},
                                         Filter{kBrown, 100, false}, Filter{kBrown, 100, true}, Filter{kLut, 0, false},
                                         Filter{kLut, 37, false}, Filter{kLut, 100, false}, Filter{kLut, 100, true},
                                         Filter{kLut, 0, true}));

// Catches a context that is handed back changed, by any frame of the loading or by any filter.
TEST_F(EffectsOnMesa, LeaveTheGamesStateAlone) {
    load(0);
    setOddState();
    mManager->EnableLoadResource();
    const StateDump before = StateDump::take();
    for (int frame = 0; frame < 12; ++frame) {
        mManager->FrameEnd();
        EXPECT_SAME_STATE(before) << "frame " << frame;
    }
    for (const GLenum unit : {GL_TEXTURE5, GL_TEXTURE0}) {
        glActiveTexture(unit);
        const StateDump game = StateDump::take();
        for (const int type : {kLut, kGreen, kBrown, kLut, kLut}) {
            EffectGame::choose(type);
            mManager->FrameEnd();
            ASSERT_TRUE(mManager->EnableRender());
            render();
            EXPECT_SAME_STATE(game) << "filter " << type;
        }
    }
    mManager.reset();
    glActiveTexture(GL_TEXTURE5);
    EXPECT_SAME_STATE(before);
}

// Catches a file that crashes the reader, is taken although it is damaged, or is refused although it is fine; rows of
// an odd length that shift, and an interlaced image that is put together wrongly.
TEST_F(EffectsOnMesa, ReadTheImagesThatAreOfUse) {
    load(0);
    EffectGame::load(*mManager);
    OrvelLutEffect effect(false);
    effect.Init("");
    const std::string fine = pngFile(40, 30);
    std::string flipped = fine;
    flipped[fine.find("IDAT") + 10] ^= 0x10;
    struct File {
        const char* what;
        std::string content;
        bool taken;
    };
    for (const auto& [what, content, taken] :
         {File{"fine", fine, true},
          {"with alpha", pngFile(3, 5, PNG_COLOR_TYPE_RGB_ALPHA), true},
          {"largest", pngFile(4096, 2), true},
          {"too wide", pngFile(4097, 1), false},
          {"grey", pngFile(8, 8, PNG_COLOR_TYPE_GRAY), false},
          {"palette", pngFile(8, 8, PNG_COLOR_TYPE_PALETTE), false},
          {"16 bits", pngFile(8, 8, PNG_COLOR_TYPE_RGB, 16), false},
          {"no end mark", fine.substr(0, fine.size() - 12), true}, // all rows are there
          {"half the rows", fine.substr(0, fine.size() / 2), false},
          {"half a signature", fine.substr(0, 5), false},
          {"empty", "", false},
          {"damaged", flipped, false}}) {
        mGame->writeResource("file.png", content);
        const StateDump before = StateDump::take();
        OrvelLutEffectInstance instance(&effect);
        ASSERT_TRUE(instance.IsEnabled());
        instance.Init(mManager.get(), android::orvel::systemPath("/vendor/odm/etc/game/effect/file.png"));
        EXPECT_EQ(instance.IsEnabled(), taken) << what;
        EXPECT_SAME_STATE(before) << what;
    }
    OrvelLutEffectInstance none(&effect);
    none.Init(mManager.get(), android::orvel::systemPath("/vendor/odm/etc/game/effect")); // a folder
    EXPECT_FALSE(none.IsEnabled());

    std::vector<uint8_t> texels(37 * 11 * 3);
    std::generate(texels.begin(), texels.end(), [value = uint8_t{0}]() mutable { return value += 7; });
    for (const int interlace : {PNG_INTERLACE_NONE, PNG_INTERLACE_ADAM7}) {
        mGame->writeResource("file.png", pngFile(37, 11, PNG_COLOR_TYPE_RGB, 8, interlace, texels));
        OrvelLutEffectInstance instance(&effect);
        instance.Init(mManager.get(), android::orvel::systemPath("/vendor/odm/etc/game/effect/file.png"));
        effect.BindProgram();
        OrvelStateTracker tracker(false);
        instance.Tick(tracker);
        GLint texture = 0;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
        const Picture seen = MesaContext::readTexture(static_cast<GLuint>(texture), 37, 11);
        for (size_t i = 0; i < texels.size(); ++i) {
            ASSERT_EQ(seen.pixels[i / 3][i % 3], texels[i]) << i << " " << interlace;
        }
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Catches a binary that is not used, and one that is of no use and leaves the effect without a program.
TEST_F(EffectsOnMesa, BinariesAreUsedWhenTheyCanBe) {
    load(0);
    OrvelLutEffect other(false); // its binary stands in for another one, so that one sees whether it is used
    other.Init("");
    const GLuint program = other.GetProgram().GetProgram();
    GLint length = 0;
    glGetProgramiv(program, GL_PROGRAM_BINARY_LENGTH, &length);
    std::string binary(static_cast<size_t>(length), '\0');
    GLenum format = 0;
    glGetProgramBinary(program, length, nullptr, &format, binary.data());
    const auto file = [](uint32_t bytes, uint32_t kind, const std::string& content) {
        std::string all;
        for (int shift = 0; shift < 64; shift += 8) {
            all += static_cast<char>((uint64_t{kind} << 32 | bytes) >> shift);
        }
        return all + content;
    };
    const auto bytes = static_cast<uint32_t>(length);
    std::string damaged = binary;
    damaged[damaged.size() / 2] ^= 0x55;
    constexpr uintmax_t kHuge = uintmax_t{1} << 40; // bytes, nearly all of them a hole
    struct File {
        const char* what;
        std::string content;
        bool used;
        uintmax_t size = 0; // unless it is the content's
    };
    const std::string path = android::orvel::systemPath("/vendor/odm/etc/game/effect/file.bin");
    for (const auto& [what, content, used, size] : {File{"fine", file(bytes, format, binary), true},
                                                    {"more behind it", file(bytes, format, binary + "more"), true},
                                                    {"damaged", file(bytes, format, damaged), false},
                                                    {"short", file(100, format, binary), false},
                                                    {"negative", file(0x80000000, format, binary), false},
                                                    {"other format", file(bytes, format + 1, binary), false},
                                                    {"huge file", file(bytes, format, binary), true, kHuge},
                                                    {"huge binary", file(0x7FFFFFFF, format, binary), false, kHuge},
                                                    {"empty", "", false}}) {
        mGame->writeResource("file.bin", content);
        if (size != 0) {
            std::filesystem::resize_file(path, size);
        }
        const StateDump before = StateDump::take();
        OrvelGreenEffect effect(true);
        effect.Init(path);
        EXPECT_SAME_STATE(before) << what;
        EXPECT_TRUE(effect.IsValid()) << what;
        EXPECT_EQ(effect.GetProgram().GetUniformLocation("lutTex") != -1, used) << what;
    }
    OrvelGreenEffect missing(true);
    missing.Init("/nowhere");
    EXPECT_TRUE(missing.IsValid());
}

// Catches a source that is compiled where it cannot be, and a binary that is not tried there.
TEST_F(EffectsOnMesa, ArmFetchTakesBinariesOnly) {
    platform.glGetString = [](GLenum) { return reinterpret_cast<const GLubyte*>("GL_ARM_shader_framebuffer_fetch"); };
    load(kGreen);
    EffectGame::load(*mManager);
    EXPECT_FALSE(mManager->EnableRender());
    OrvelVisualProgram made;
    made.CreateFromShaderSource(OrvelVisualEffect::GetVertexSource(),
                                "#version 310 es\nprecision highp float;\nuniform vec4 param;\nout vec4 colour;\n"
                                "void main() { colour = param; }\n");
    std::string binary(100000, '\0');
    GLsizei length = 0;
    GLenum format = 0;
    glGetProgramBinary(made.GetProgram(), static_cast<GLsizei>(binary.size()), &length, &format, binary.data());
    const uint32_t head[] = {static_cast<uint32_t>(length), format};
    mGame->writeResource("file.bin", std::string(reinterpret_cast<const char*>(head), sizeof head) + binary);
    OrvelGreenEffect effect(true);
    effect.Init(android::orvel::systemPath("/vendor/odm/etc/game/effect/file.bin"));
    EXPECT_TRUE(effect.IsValid());
}
