// orvel_bench: the cost of the legacy hooks with every feature off, and with dynamic resolution on.
//   orvel_bench [Google Benchmark's options]   times
//   orvel_bench --count                        under callgrind: one dump per measurement, for instruction counts
#include "DynamicResolution.h"
#include "Floors.h"
#include "NullDriver.h"
#include "loader/OrvelLegacyHooks.h"
#include "next/OrvelNext.h"
#include "settings/orvel_modify_params.h"

#include <android/log.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_DUMP_STATS_AT(text) (void)(text)
#endif

using namespace android;
using orvel::next::GlTable;

namespace {

constexpr int kRecordedTextures = 64; // with dynamic resolution on

gl_hooks_t sDirect;
gl_hooks_t sFloor;
gl_hooks_t sRewritingFloor;
gl_hooks_t sHooked;
egl_connection_t sConnection;

void connect() {
    connectNullDriver(sConnection, sDirect);
    nameTextures(sDirect.gl);
    orvel::next::InitNextFunctions(&sConnection);
    sFloor = sDirect;
    installFloors(sFloor.gl);
    sRewritingFloor = sDirect;
    installDynamicResolutionFloors(sRewritingFloor.gl, kRecordedTextures);
    sHooked = sDirect;
    installOrvelHooks(&sHooked);
}

const GLfloat kVector[4] = {1, 2, 3, 4};

/** One call through a table, as a public entry makes it. */
struct Call {
    const char* name;
    void (*make)(const GlTable& table);
};

const Call kCalls[] = {
    {"glDrawArrays", [](const GlTable& t) { t.glDrawArrays(GL_TRIANGLES, 0, 3); }},
    {"glBindFramebuffer", [](const GlTable& t) { t.glBindFramebuffer(GL_FRAMEBUFFER, 1); }},
    {"glBindTexture", [](const GlTable& t) { t.glBindTexture(GL_TEXTURE_2D, 1); }},
    {"glViewport", [](const GlTable& t) { t.glViewport(0, 0, 1280, 720); }},
    {"glDrawElements", [](const GlTable& t) { t.glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr); }},
    {"glUniform4fv", [](const GlTable& t) { t.glUniform4fv(0, 1, kVector); }},
};

struct Way {
    const char* name;
    gl_hooks_t* table;
};

const GLfloat kScreenSize[4] = {1920, 1080, 1 + 1 / 1920.0f, 1 + 1 / 1080.0f};

// With dynamic resolution on: what is recorded is looked up, what has the base size is rewritten.
const Call kRewritingCalls[] = {
    {"glBindTexture 64 recorded", [](const GlTable& t) { t.glBindTexture(GL_TEXTURE_2D, 37); }},
    {"glViewport rewritten", [](const GlTable& t) { t.glViewport(0, 0, 1920, 1080); }},
    {"glUniform4fv rewritten", [](const GlTable& t) { t.glUniform4fv(0, 1, kScreenSize); }},
};

const Way kWays[] = {{"direct", &sDirect}, {"floor", &sFloor}, {"hook", &sHooked}};
const Way kRewritingWays[] = {{"direct", &sDirect}, {"floor", &sRewritingFloor}, {"hook", &sHooked}};

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

/** Around one measurement: the feature on, as in a game that is being played. */
class Game {
public:
    explicit Game(int textures) { playGame(sHooked.gl, textures); }
    ~Game() { endGame(); }
};

void registerTimes() {
    const auto registerCall = [](const Call& call, const Way& way, bool rewriting) {
        benchmark::RegisterBenchmark((std::string(call.name) + "/" + way.name).c_str(),
                                     [&call, &way, rewriting](benchmark::State& state) {
                                         std::optional<Game> game;
                                         if (rewriting) {
                                             game.emplace(kRecordedTextures);
                                         }
                                         for (auto _ : state) {
                                             call.make(way.table->gl);
                                         }
                                     });
    };
    for (const Way& way : kWays) {
        for (const Call& call : kCalls) {
            registerCall(call, way, false);
        }
    }
    for (const Way& way : kRewritingWays) {
        for (const Call& call : kRewritingCalls) {
            registerCall(call, way, true);
        }
    }
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
    constexpr int kTimes = 1000;
    const auto count = [](const Call& call, const Way& way) {
        call.make(way.table->gl); // the first call resolves what is resolved lazily
        CALLGRIND_ZERO_STATS;
        for (int i = 0; i < kTimes; ++i) {
            call.make(way.table->gl);
        }
        const std::string label = std::string(call.name) + "/" + way.name;
        CALLGRIND_DUMP_STATS_AT(label.c_str());
    };
    for (const Call& call : kCalls) {
        for (const Way& way : kWays) {
            count(call, way);
        }
    }
    const Game game(kRecordedTextures);
    for (const Call& call : kRewritingCalls) {
        for (const Way& way : kRewritingWays) {
            count(call, way);
        }
    }
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
