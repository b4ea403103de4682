// Labels against configured patterns: the list's quick answers must be those of the standard library's expressions.
#include "Fuzz.h"

#include "base/OrvelPatternList.h"

#include <regex>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::logNothing();
    return 0;
}

/** @return the position, by the plainest way there is */
static int findPlainly(const std::vector<std::string>& patterns, const std::string& text) {
    for (size_t i = 0; i < patterns.size(); ++i) {
        try {
            if (std::regex_match(
                    text, std::regex(patterns[i], std::regex::ECMAScript | std::regex_constants::__polynomial))) {
                return static_cast<int>(i);
            }
        } catch (const std::regex_error&) {
            // back-references, which that matcher does not know, or no pattern at all
        }
    }
    return android::orvel::OrvelPatternList::kNone;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 256) {
        return 0; // compiling is slow
    }
    FuzzedDataProvider input(data, size);
    const std::string text = input.ConsumeRandomLengthString(64);
    const std::vector<std::string> patterns =
        android::orvel::OrvelPatternList::split(input.ConsumeRemainingBytesAsString());
    for (const std::string& pattern : patterns) {
        size_t digits = 0;
        for (const char each : pattern) {
            digits = each >= '0' && each <= '9' ? digits + 1 : 0;
            if (digits > 9) {
                return 0; // the library's own reader of numbers breaks
            }
        }
        for (size_t i = 0; i + 1 < pattern.size(); ++i) {
            if (pattern[i] == '\\' && pattern[i + 1] >= '1' && pattern[i + 1] <= '9') {
                return 0; // the two differ by intent
            }
        }
    }
    const int found = android::orvel::OrvelPatternList(patterns).find(text);
    fuzz::demand(found == findPlainly(patterns, text), "the first pattern that matches the whole text");
    return 0;
}
