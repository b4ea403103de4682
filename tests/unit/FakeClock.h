// Time that moves only when the test says so.
#pragma once

#include <cstdint>

/** While one lives, the library's clock shows what it was told, and its sleeps pass at once. One at a time. */
class FakeClock {
public:
    FakeClock();
    ~FakeClock();
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;

    void advanceNanos(int64_t nanos);
    void advanceMillis(int64_t millis) { advanceNanos(millis * 1'000'000); }
};
