// What texts came to when they were looked up before.
#pragma once

#include <cstddef>
#include <functional>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>

namespace android::orvel {

/** Lets a text pay for its lookup only at first sight. Bounded; belongs to one thread. */
class OrvelTextMemo {
public:
    /**
     * @param lookUp called with the text unless its answer is remembered; always answers the same for the same text
     * @throw what lookUp throws
     */
    template <typename LookUp>
    int find(std::string_view text, LookUp lookUp) {
        if (text.size() > kLongestText) {
            return lookUp(text);
        }
        if (const auto known = mAnswers.find(text); known != mAnswers.end()) {
            return known->second;
        }
        const int answer = lookUp(text);
        if (mAnswers.size() < kMostTexts) {
            try {
                mAnswers.emplace(text, answer);
            } catch (const std::bad_alloc&) { // then it pays again
            }
        }
        return answer;
    }

private:
    static constexpr size_t kMostTexts = 16'384; // further texts are looked up every time
    static constexpr size_t kLongestText = 256;  // characters; so are longer ones

    struct Hash {
        using is_transparent = void; // finds a text without making a string of it
        size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };

    std::unordered_map<std::string, int, Hash, std::equal_to<>> mAnswers;
};

} // namespace android::orvel
