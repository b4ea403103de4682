// Time and sleep, behind one function each: the tests link their own bodies and so move time.
#pragma once

#include <cstdint>

namespace android::orvel {

/** @return nanoseconds of the monotonic clock */
int64_t monotonicNanos();

/** Suspends the calling thread for so many microseconds. */
void sleepMicros(int64_t micros);

} // namespace android::orvel
