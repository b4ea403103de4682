// Time and sleep, behind one function each, so that a test can link bodies of its own and move time.
#pragma once

#include <cstdint>

namespace android::orvel {

constexpr int64_t kNanosPerMilli = 1'000'000;

/** @return nanoseconds of the monotonic clock */
int64_t monotonicNanos();

/** Suspends the calling thread for so many microseconds. */
void sleepMicros(int64_t micros);

} // namespace android::orvel
