// What super resolution costs on the driver at hand: each pass and both, beside the plainest port of the same formulas
// and one bilinear blit of the same sizes.
#include "MesaContext.h"
#include "PlainFsr.h"
#include "base/FsrConstants.h"
#include "legacy/OrvelSRShaders.h"

#include <benchmark/benchmark.h>

#include <android/log.h>

#include <memory>
#include <string>

using namespace android::orvel;

namespace {

struct Sizes {
    int inputWidth, inputHeight, outputWidth, outputHeight;
};
constexpr Sizes kSizes[] = {{1280, 720, 1920, 1080}, {1620, 728, 2712, 1220}};

/** Edges in every direction, and noise, so that no branch is the same for all. */
Picture makePicture(int width, int height) {
    Picture picture(width, height);
    uint32_t noise = 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            noise = noise * 1664525 + 1013904223;
            const bool inside = (x / 40 + y / 30) % 2 == 0 || (x * x + y * y) / 9000 % 3 == 0;
            const auto grain = static_cast<uint8_t>(noise >> 28);
            picture.at(x, y) = {static_cast<uint8_t>((inside ? 200 : 40) + grain), static_cast<uint8_t>(x / 11 + grain),
                                static_cast<uint8_t>(y / 6 + grain), 255};
        }
    }
    return picture;
}

class Passes {
public:
    Passes(const Sizes& sizes, const char* easu, const char* rcas)
        : mSizes(sizes),
          mInput(MesaContext::makeTexture(makePicture(sizes.inputWidth, sizes.inputHeight))),
          mEasu(kFsrVertexShader, easu, sizes.outputWidth, sizes.outputHeight),
          mRcas(kFsrVertexShader, rcas, sizes.outputWidth, sizes.outputHeight) {
        const auto constants =
            fsrEasuConstants(sizes.inputWidth, sizes.inputHeight, sizes.outputWidth, sizes.outputHeight);
        glUniform4fv(mEasu.uniform("_EASUParameters"), 4, constants.data());
        setSize(mEasu);
        glUniform4f(mRcas.uniform("_RCASParameters"), 0.5F, 0.70711F, 0, 0);
        setSize(mRcas);
    }

    void upscale() const { mEasu.draw(mInput); }
    void sharpen() const { mRcas.draw(mEasu.target()); }
    Picture result() const {
        upscale();
        sharpen();
        return MesaContext::readTexture(mRcas.target(), mSizes.outputWidth, mSizes.outputHeight);
    }

private:
    void setSize(const ShaderPass& pass) const {
        glUniform2ui(pass.uniform("_OutputSize"), static_cast<GLuint>(mSizes.outputWidth),
                     static_cast<GLuint>(mSizes.outputHeight));
    }

    const Sizes mSizes;
    const GLuint mInput;
    const ShaderPass mEasu;
    const ShaderPass mRcas;
};

class Blit {
public:
    explicit Blit(const Sizes& sizes) : mSizes(sizes) {
        glGenFramebuffers(2, mFramebuffers);
        attach(0, MesaContext::makeTexture(makePicture(sizes.inputWidth, sizes.inputHeight)));
        attach(1, MesaContext::makeTexture(sizes.outputWidth, sizes.outputHeight));
    }
    void run() const {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, mFramebuffers[0]);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, mFramebuffers[1]);
        glBlitFramebuffer(0, 0, mSizes.inputWidth, mSizes.inputHeight, 0, 0, mSizes.outputWidth, mSizes.outputHeight,
                          GL_COLOR_BUFFER_BIT, GL_LINEAR);
    }

private:
    void attach(int which, GLuint texture) const {
        glBindFramebuffer(GL_FRAMEBUFFER, mFramebuffers[which]);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    }

    const Sizes mSizes;
    GLuint mFramebuffers[2] = {};
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

} // namespace

int main(int argc, char** argv) {
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    const MesaContext context;
    for (const Sizes& sizes : kSizes) {
        const std::string to = std::to_string(sizes.inputWidth) + "x" + std::to_string(sizes.inputHeight) + " to " +
                               std::to_string(sizes.outputWidth) + "x" + std::to_string(sizes.outputHeight);
        const auto ours = std::make_shared<Passes>(sizes, kEasuShader, kRcasShader);
        const auto plain = std::make_shared<Passes>(sizes, bench::kPlainEasu, bench::kPlainRcas);
        const auto blit = std::make_shared<Blit>(sizes);
        const size_t pixels = static_cast<size_t>(sizes.outputWidth) * static_cast<size_t>(sizes.outputHeight);
        if (ours->result().countDifferences(plain->result(), 1) > pixels / 1000) { // rounding at thresholds
            std::fprintf(stderr, "the plain port draws another picture\n");
            return 1;
        }
        add("EASU " + to + "/ours", [ours] { ours->upscale(); });
        add("EASU " + to + "/plain", [plain] { plain->upscale(); });
        add("RCAS " + to + "/ours", [ours] { ours->sharpen(); });
        add("RCAS " + to + "/plain", [plain] { plain->sharpen(); });
        add("both " + to + "/ours", [ours] { ours->upscale(), ours->sharpen(); });
        add("both " + to + "/plain", [plain] { plain->upscale(), plain->sharpen(); });
        add("both " + to + "/blit", [blit] { blit->run(); });
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
