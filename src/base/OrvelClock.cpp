#include "base/OrvelClock.h"

#include <chrono>
#include <thread>

namespace android::orvel {

int64_t monotonicNanos() {
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

void sleepMicros(int64_t micros) { std::this_thread::sleep_for(std::chrono::microseconds(micros)); }

} // namespace android::orvel
