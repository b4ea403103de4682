// Plain variables that two threads may touch.
#pragma once

#include <atomic>

namespace android::orvel {

/** Reads and writes as a plain variable does, whole and unordered, but two threads may do so. */
template <typename T>
class Relaxed {
public:
    constexpr Relaxed(T value = T{}) : mValue(value) {}
    Relaxed(const Relaxed&) = delete;
    Relaxed& operator=(const Relaxed&) = delete;

    operator T() const { return mValue.load(std::memory_order_relaxed); }
    T operator=(T value) {
        mValue.store(value, std::memory_order_relaxed);
        return value;
    }

private:
    std::atomic<T> mValue;
};

} // namespace android::orvel
