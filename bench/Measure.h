// One call measured one way: in time, or in instructions under callgrind.
#pragma once

#include "next/OrvelNext.h"

#include <benchmark/benchmark.h>

#include <string>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_DUMP_STATS_AT(text) (void)(text)
#endif

/** One call through a table, as a public entry makes it. */
struct Call {
    const char* name;
    void (*make)(const android::orvel::next::GlTable& table);
};

/** A table of that name: the driver's own, one of hand-written floors, one of hooks. */
struct Way {
    const char* name;
    android::gl_hooks_t* table;
};

/** What must live during a measurement: nothing. */
struct NoFeature {};

/** Measures each call each way while one Feature lives. */
template <typename Feature, size_t Calls, size_t Ways>
void registerCalls(const Call (&calls)[Calls], const Way (&ways)[Ways]) {
    for (const Way& way : ways) {
        for (const Call& call : calls) {
            benchmark::RegisterBenchmark((std::string(call.name) + "/" + way.name).c_str(),
                                         [&call, &way](benchmark::State& state) {
                                             [[maybe_unused]] const Feature feature;
                                             for (auto _ : state) {
                                                 call.make(way.table->gl);
                                             }
                                         });
        }
    }
}

/** One dump per call and way while one Feature lives. */
template <typename Feature, size_t Calls, size_t Ways>
void countCalls(const Call (&calls)[Calls], const Way (&ways)[Ways]) {
    constexpr int kTimes = 1000;
    [[maybe_unused]] const Feature feature;
    for (const Call& call : calls) {
        for (const Way& way : ways) {
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
