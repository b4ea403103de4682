// What a colour filter costs on the driver at hand, beside one of the same formulas that copies the frame to a texture
// and draws it back.
#include "MesaContext.h"
#include "next/EffectGame.h"
#include "next/OrvelStateTracker.h"
#include "next/effects/OrvelGreenEffect.h"
#include "next/effects/OrvelLutEffect.h"

#include <benchmark/benchmark.h>

#include <android/log.h>

#include <memory>
#include <string>

using namespace android;
using namespace android::orvel::next;

namespace {

constexpr std::pair<int, int> kSizes[] = {{1280, 720}, {1920, 1080}};
constexpr int kLutSide = 512;
constexpr int kGreen = 1, kLut = 4; // filter types

/** Like a game's: colours that change slowly, and a little noise. */
Picture makePicture(int width, int height) {
    Picture picture(width, height);
    uint32_t noise = 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            noise = noise * 1664525 + 1013904223;
            const auto grain = static_cast<uint8_t>(noise >> 28);
            picture.at(x, y) = {static_cast<uint8_t>(x / 9 + grain), static_cast<uint8_t>(y / 6 + grain),
                                static_cast<uint8_t>((x + y) / 13 + grain), 255};
        }
    }
    return picture;
}

std::vector<uint8_t> makeLut() {
    std::vector<uint8_t> texels;
    for (int i = 0; i < kLutSide * kLutSide; ++i) {
        const int x = i % kLutSide, y = i / kLutSide;
        texels.insert(texels.end(), {static_cast<uint8_t>(y % 64 * 4), static_cast<uint8_t>(x % 64 * 4),
                                     static_cast<uint8_t>(255 - (y / 64 * 8 + x / 64) * 4)});
    }
    return texels;
}

/** A frame to be filtered over and over; what is in it does not matter for the time. */
class Frame {
public:
    Frame(int width, int height) : mWidth(width), mHeight(height) {
        mTexture = MesaContext::makeTexture(makePicture(width, height));
        glGenFramebuffers(1, &mFramebuffer);
        bind();
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, mTexture, 0);
    }
    void bind() const {
        glBindFramebuffer(GL_FRAMEBUFFER, mFramebuffer);
        glViewport(0, 0, mWidth, mHeight);
    }
    Picture picture() const { return MesaContext::readTexture(mTexture, mWidth, mHeight); }

    const int mWidth, mHeight;

private:
    GLuint mTexture;
    GLuint mFramebuffer = 0;
};

/** The library's filter, as a module draws it. */
void drawOurs(OrvelVisualEffectManager& manager, const Frame& frame) {
    frame.bind();
    OrvelStateTracker tracker(true);
    manager.Render(tracker);
}

/** The same filter the other way: its own text, but for where the colour comes from. */
template <typename Effect>
class CopyAndDraw {
public:
    CopyAndDraw(int width, int height) : mCopy(MesaContext::makeTexture(width, height)) {
        Effect effect(false);
        effect.Init("");
        std::string text = effect.GetFragmentSource();
        replace(text, "#extension GL_EXT_shader_framebuffer_fetch : require\n", "");
        replace(text, "inout highp vec4 colour;", "out highp vec4 colour;\nuniform highp sampler2D frame;");
        replace(text, "void main() {", "void main() {\n    colour = texture(frame, vs_TEXCOORD0.xy);");
        mProgram.CreateFromShaderSource(OrvelVisualEffect::GetVertexSource(), text);
        mProgram.Use();
        glUniform1i(mProgram.GetUniformLocation("frame"), 1);
        glUniform4f(mProgram.GetUniformLocation("param"), 1, 0, 0, 0);
        glGenVertexArrays(1, &mVao);
        glGenTextures(1, &mLut);
        glBindTexture(GL_TEXTURE_2D, mLut);
        glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGB8, kLutSide, kLutSide);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, kLutSide, kLutSide, GL_RGB, GL_UNSIGNED_BYTE, makeLut().data());
    }
    void draw(const Frame& frame) const {
        frame.bind();
        mProgram.Use();
        glBindVertexArray(mVao);
        glActiveTexture(GL_TEXTURE1);
        glBindTexture(GL_TEXTURE_2D, mCopy);
        glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, frame.mWidth, frame.mHeight);
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, mLut);
        glDrawArrays(GL_TRIANGLES, 0, 3);
    }

private:
    static void replace(std::string& text, const std::string& old, const std::string& with) {
        text.replace(text.find(old), old.size(), with);
    }

    GLuint mCopy;
    OrvelVisualProgram mProgram;
    GLuint mVao = 0;
    GLuint mLut = 0;
};

template <typename Work>
void add(const std::string& name, Work work) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [work](benchmark::State& state) {
                                     for (auto _ : state) {
                                         work();
                                         glFinish();
                                     }
                                 })
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime() // the driver draws on threads of its own, and others use the machine, too
        ->UseRealTime();
}

/** @return whether both ways draw the same */
template <typename Effect>
bool addFilter(const char* name, int type, OrvelVisualEffectManager& manager) {
    for (const auto& [width, height] : kSizes) {
        const auto frame = std::make_shared<Frame>(width, height);
        const auto other = std::make_shared<Frame>(width, height);
        const auto plain = std::make_shared<CopyAndDraw<Effect>>(width, height);
        const auto choose = [&manager, type] {
            EffectGame::choose(type);
            manager.FrameEnd();
        };
        choose();
        drawOurs(manager, *frame);
        plain->draw(*other);
        if (frame->picture().differenceTo(other->picture()) > 1) {
            std::fprintf(stderr, "%s: the copying filter draws another picture\n", name);
            return false;
        }
        const std::string at = std::string(name) + " " + std::to_string(width) + "x" + std::to_string(height);
        add(at + "/ours", [=, &manager] { choose(), drawOurs(manager, *frame); });
        add(at + "/copied", [=] { plain->draw(*other); });
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    const MesaContext context;
    const EffectGame game(APP_TYPE_SGAME, "0;0;0;1", "1;2;4;7;8");
    game.writeResource("heijin.png", pngFile(kLutSide, kLutSide, PNG_COLOR_TYPE_RGB, 8, PNG_INTERLACE_NONE, makeLut()));
    OrvelVisualEffectManager manager;
    EffectGame::load(manager);
    if (!addFilter<OrvelGreenEffect>("green", kGreen, manager) || !addFilter<OrvelLutEffect>("LUT", kLut, manager)) {
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
