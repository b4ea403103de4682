// orvel_bench: the cost of the legacy hooks with every feature off.
//   orvel_bench [Google Benchmark's options]   times
//   orvel_bench --count                        under callgrind: one dump per measurement, for instruction counts
#include "Floors.h"
#include "NullDriver.h"
#include "loader/OrvelLegacyHooks.h"
#include "next/OrvelNext.h"
#include "settings/orvel_modify_params.h"

#include <android/log.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
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

gl_hooks_t sDirect;
gl_hooks_t sFloor;
gl_hooks_t sHooked;
egl_connection_t sConnection;

void connect() {
    connectNullDriver(sConnection, sDirect);
    orvel::next::InitNextFunctions(&sConnection);
    sFloor = sDirect;
    installFloors(sFloor.gl);
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

const Way kWays[] = {{"direct", &sDirect}, {"floor", &sFloor}, {"hook", &sHooked}};

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

void registerTimes() {
    for (const Call& call : kCalls) {
        for (const Way& way : kWays) {
            benchmark::RegisterBenchmark((std::string(call.name) + "/" + way.name).c_str(),
                                         [&call, &way](benchmark::State& state) {
                                             for (auto _ : state) {
                                                 call.make(way.table->gl);
                                             }
                                         });
        }
    }
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
    for (const Call& call : kCalls) {
        for (const Way& way : kWays) {
            call.make(way.table->gl); // the first call resolves what is resolved lazily
            CALLGRIND_ZERO_STATS;
            for (int i = 0; i < kTimes; ++i) {
                call.make(way.table->gl);
            }
            const std::string label = std::string(call.name) + "/" + way.name;
            CALLGRIND_DUMP_STATS_AT(label.c_str());
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
