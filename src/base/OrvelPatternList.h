// Patterns of the configuration that are tried in order.
#pragma once

#include "base/OrvelPattern.h"

#include <string>
#include <string_view>
#include <vector>

namespace android::orvel {

/**
 * Filled while the configuration is read and not changed afterwards: then threads share it without a lock. It remembers
 * nothing; who looks up texts that come again keeps an OrvelTextMemo of its own.
 */
class OrvelPatternList {
public:
    static constexpr int kNone = -1;

    /** @return the patterns that text names, separated by "|", each of them once, in the order of their first place */
    static std::vector<std::string> split(const std::string& text);

    OrvelPatternList() = default;
    explicit OrvelPatternList(const std::vector<std::string>& patterns) { append(patterns); }

    /** Adds patterns behind the others. One that does not compile is logged, keeps its place and matches nothing. */
    void append(const std::vector<std::string>& patterns);
    size_t size() const { return mPatterns.size(); }
    bool isEmpty() const { return mPatterns.empty(); }

    /** @return the position of the first pattern that matches the whole text, or kNone */
    int find(std::string_view text) const;

private:
    std::vector<OrvelPattern> mPatterns;
};

} // namespace android::orvel
