// How sequences of draws are followed: short histories of element counts, and positions in fixed patterns.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace android::orvel {

constexpr int32_t kNoWildcard = -1;
constexpr int32_t kBrokenPattern = -1; // a position: nothing matches before the next clear

/** Appends to a history, oldest first, whose oldest value falls out. */
template <size_t N>
void appendToHistory(int32_t (&history)[N], int32_t value) {
    int32_t kept[N - 1]; // on the way through registers: moved in place they would cost a call
    std::memcpy(kept, history + 1, sizeof kept);
    std::memcpy(history, kept, sizeof kept);
    history[N - 1] = value;
}

/**
 * Follows a pattern by one draw.
 * @param wildcard the entry that any draw matches, whatever the pattern holds there
 * @param position of the entry to come
 * @param count    elements drawn; 0 a clear, which starts a run but does not break one; negative ones are ignored
 * @return whether the pattern is complete; its position is then broken, as after a count that does not match
 */
template <size_t N>
bool followPattern(const int32_t (&pattern)[N], int32_t wildcard, int32_t& position, int32_t count) {
    const int32_t now = position;
    if (count == 0) {
        position = std::max(now, 0);
        return false;
    }
    if (count < 0 || now < 0) {
        return false;
    }
    const bool matches = now == wildcard || count == pattern[now];
    const bool ends = now + 1 == static_cast<int32_t>(N);
    position = matches && !ends ? now + 1 : kBrokenPattern;
    return matches && ends;
}

} // namespace android::orvel
