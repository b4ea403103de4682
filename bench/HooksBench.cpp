// orvel_bench: the cost of the legacy hooks with every feature off, with dynamic resolution on, with every recogniser
// on, of the framework's hooks, of SGame's processor and of its shading rates.
//   orvel_bench [Google Benchmark's options]   times
//   orvel_bench --count                        under callgrind: one dump per measurement, for instruction counts
#include "DynamicResolution.h"
#include "Floors.h"
#include "FrameworkBench.h"
#include "Measure.h"
#include "NullDriver.h"
#include "SGameBench.h"
#include "SceneRecognition.h"
#include "ShadingRateBench.h"
#include "loader/OrvelLegacyHooks.h"
#include "next/OrvelNext.h"
#include "settings/orvel_modify_params.h"

#include <android/log.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using namespace android;
using orvel::next::GlTable;

namespace {

constexpr int kRecordedTextures = 64; // with dynamic resolution on

gl_hooks_t sDirect;
gl_hooks_t sFloor;
gl_hooks_t sRewritingFloor;
gl_hooks_t sRecognisingFloor;
gl_hooks_t sHooked;
egl_connection_t sConnection;

void connect() {
    connectNullDriver(sConnection, sDirect);
    nameTextures(sDirect.gl);
    sizeTextures(sDirect.gl);
    orvel::next::InitNextFunctions(&sConnection);
    sFloor = sDirect;
    installFloors(sFloor.gl);
    sRewritingFloor = sDirect;
    installDynamicResolutionFloors(sRewritingFloor.gl, kRecordedTextures);
    sRecognisingFloor = sDirect;
    installRecognitionFloors(sRecognisingFloor.gl);
    sHooked = sDirect;
    installOrvelHooks(&sHooked);
    connectFramework(sConnection);
    connectSGame(sConnection);
    connectShadingRate(sConnection);
}

const GLfloat kVector[4] = {1, 2, 3, 4};

const Call kCalls[] = {
    {"glDrawArrays", [](const GlTable& t) { t.glDrawArrays(GL_TRIANGLES, 0, 3); }},
    {"glBindFramebuffer", [](const GlTable& t) { t.glBindFramebuffer(GL_FRAMEBUFFER, 1); }},
    {"glBindTexture", [](const GlTable& t) { t.glBindTexture(GL_TEXTURE_2D, 1); }},
    {"glViewport", [](const GlTable& t) { t.glViewport(0, 0, 1280, 720); }},
    {"glDrawElements", [](const GlTable& t) { t.glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr); }},
    {"glUniform4fv", [](const GlTable& t) { t.glUniform4fv(0, 1, kVector); }},
};

const GLfloat kScreenSize[4] = {1920, 1080, 1 + 1 / 1920.0f, 1 + 1 / 1080.0f};

// With dynamic resolution on: what is recorded is looked up, what has the base size is rewritten.
const Call kRewritingCalls[] = {
    {"glBindTexture 64 recorded", [](const GlTable& t) { t.glBindTexture(GL_TEXTURE_2D, 37); }},
    {"glViewport rewritten", [](const GlTable& t) { t.glViewport(0, 0, 1920, 1080); }},
    {"glUniform4fv rewritten", [](const GlTable& t) { t.glUniform4fv(0, 1, kScreenSize); }},
};

// With every recogniser on: draws that fit no pattern, and most of a transfer, which fits several.
const Call kRecognisingCalls[] = {
    {"glDrawElements recognised",
     [](const GlTable& t) { t.glDrawElements(GL_TRIANGLES, 36, GL_UNSIGNED_SHORT, nullptr); }},
    {"7 calls of a transfer",
     [](const GlTable& t) {
         t.glClear(GL_COLOR_BUFFER_BIT);
         for (const GLsizei count : {6, 108, 33, 6, 6, 6}) {
             t.glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_SHORT, nullptr);
         }
     }},
};

const Way kWays[] = {{"direct", &sDirect}, {"floor", &sFloor}, {"hook", &sHooked}};
const Way kRewritingWays[] = {{"direct", &sDirect}, {"floor", &sRewritingFloor}, {"hook", &sHooked}};
const Way kRecognisingWays[] = {{"direct", &sDirect}, {"floor", &sRecognisingFloor}, {"hook", &sHooked}};

/** 64 KiB of shader text with a precision in every line, and a copy to be edited. */
class ShaderText {
public:
    ShaderText() {
        while (mSource.size() < 64 * 1024) {
            mSource += "uniform mediump vec4 value; // some of what a shader says\n";
        }
        mEdited.resize(mSource.size() + 1);
    }

    void send(const GlTable& table) {
        std::memcpy(mEdited.data(), mSource.c_str(), mSource.size() + 1); // the last call edited it
        const GLchar* strings[] = {mEdited.data()};
        table.glShaderSource(1, 1, strings, nullptr);
    }

private:
    std::string mSource;
    std::vector<char> mEdited;
};

/** Around one measurement: dynamic resolution on, as in a game that is being played. */
class Game {
public:
    explicit Game(int textures) { playGame(sHooked.gl, textures); }
    ~Game() { endGame(); }
};

/** Around one measurement: every recogniser on. */
class RecognisedGame {
public:
    RecognisedGame() { recogniseScenes(sHooked.gl); }
    ~RecognisedGame() { endRecognition(); }
};

struct ShrunkGame : Game {
    ShrunkGame() : Game(kRecordedTextures) {}
};

void registerTimes() {
    registerCalls<NoFeature>(kCalls, kWays);
    registerCalls<ShrunkGame>(kRewritingCalls, kRewritingWays);
    registerCalls<RecognisedGame>(kRecognisingCalls, kRecognisingWays);
    registerSGameTimes();
    registerShadingRateTimes();
    registerFrameworkTimes();
    benchmark::RegisterBenchmark("switch/of 8 textures", [](benchmark::State& state) {
        const Game game(8);
        for (auto _ : state) {
            switchResolution();
        }
    });
    for (const int value : {-1, 1}) {
        benchmark::RegisterBenchmark(value == 1 ? "glShaderSource 64 KiB/replaced" : "glShaderSource 64 KiB/copy only",
                                     [value](benchmark::State& state) {
                                         ShaderText text;
                                         mShaderReplaceValue = value;
                                         for (auto _ : state) {
                                             text.send(sHooked.gl);
                                         }
                                         mShaderReplaceValue = -1;
                                     });
    }
}

void countInstructions() {
    countCalls<NoFeature>(kCalls, kWays);
    countCalls<ShrunkGame>(kRewritingCalls, kRewritingWays);
    countCalls<RecognisedGame>(kRecognisingCalls, kRecognisingWays);
    countSGameInstructions();
    countShadingRateInstructions();
    countFrameworkInstructions();
}

} // namespace

int main(int argc, char** argv) {
    connect();
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    if (argc > 1 && std::strcmp(argv[1], "--count") == 0) {
        countInstructions();
        return 0;
    }
    registerTimes();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
