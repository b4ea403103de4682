// What texts came to when they were looked up before.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace android::orvel {

/** Lets a text pay for its lookup only at first sight. Bounded; belongs to one thread. */
class OrvelTextMemo {
public:
    /**
     * @param lookUp called with the text unless its answer is remembered; always answers the same for the same text
     * @throw std::bad_alloc, or what lookUp throws
     */
    template <typename LookUp>
    int find(std::string_view text, LookUp lookUp) {
        if (const auto known = mAnswers.find(text); known != mAnswers.end()) {
            return known->second;
        }
        const int answer = lookUp(text);
        remember(text, answer);
        return answer;
    }

private:
    static constexpr size_t kMostTexts = 4096;
    static constexpr size_t kLongestText = 256; // characters; a longer text is looked up every time

    struct Hash {
        using is_transparent = void; // finds a text without making a string of it
        size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };

    void remember(std::string_view text, int answer) {
        if (text.size() > kLongestText) {
            return;
        }
        if (mAnswers.size() >= kMostTexts) {
            mAnswers.clear();
        }
        mAnswers.emplace(text, answer);
    }

    std::unordered_map<std::string, int, Hash, std::equal_to<>> mAnswers;
};

} // namespace android::orvel
