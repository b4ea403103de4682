#include "FakeClock.h"

#include "base/OrvelClock.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

constexpr int64_t kReal = -1;
std::atomic<int64_t> sNow{kReal}; // nanoseconds, or kReal

} // namespace

FakeClock::FakeClock() { sNow = 1'000'000'000; }
FakeClock::~FakeClock() { sNow = kReal; }
void FakeClock::advanceNanos(int64_t nanos) { sNow += nanos; }

// The linker takes these instead of the library's.
namespace android::orvel {

int64_t monotonicNanos() {
    const int64_t now = sNow;
    return now != kReal ? now : std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void sleepMicros(int64_t micros) {
    if (sNow != kReal) {
        sNow += micros * 1000;
    } else {
        std::this_thread::sleep_for(std::chrono::microseconds(micros));
    }
}

} // namespace android::orvel
