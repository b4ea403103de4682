#include "base/OrvelPattern.h"

#include "base/OrvelLog.h"
#include "base/OrvelParse.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <locale>

namespace android::orvel {

namespace {

constexpr size_t kLongestPattern = 1024; // characters; compiling recurses for each of them
constexpr size_t kShortText = 64;        // characters; with back-references, each may double the time

void logBad(const std::string& pattern, const char* why) {
    ORVEL_LOGE("bad pattern \"%s\": %s", oneLine(pattern).c_str(), why);
}

/**
 * The library reads the numbers of repetitions and back-references into an integer and does not look whether it fits.
 * @return whether one is too long for that; it would be refused, anyway
 */
bool hasLongNumber(const std::string& pattern) {
    constexpr size_t kMostDigits = 9;
    const auto endOfDigits = [&](size_t at) {
        return std::min(pattern.find_first_not_of("0123456789", at), pattern.size());
    };
    for (size_t at = 0; at < pattern.size(); ++at) {
        if (pattern[at] == '\\' || pattern[at] == '{') {
            const size_t first = endOfDigits(at + 1) - at - 1;
            const size_t comma = at + 1 + first;
            const bool isRange = pattern[at] == '{' && comma < pattern.size() && pattern[comma] == ',';
            if (first > kMostDigits || (isRange && endOfDigits(comma + 1) - comma - 1 > kMostDigits)) {
                return true;
            }
            at += pattern[at] == '\\'; // what it escapes
        }
    }
    return false;
}

/** The library's matchers share a locale that fills in what it knows of characters without a lock: let it know all. */
void prepareLocale() {
    const auto& characters = std::use_facet<std::ctype<char>>(std::locale());
    characters.widen('_');
    for (int each = 1; each <= std::numeric_limits<unsigned char>::max(); ++each) {
        characters.narrow(static_cast<char>(each), '\0');
    }
}

/** What makes the library's matcher walk all ways at once instead of one after the other, where it can. */
constexpr auto kNoRecursion =
#ifdef __GLIBCXX__
    std::regex_constants::ECMAScript | std::regex_constants::__polynomial;
#else
    std::regex_constants::ECMAScript;
#endif

} // namespace

OrvelPattern::OrvelPattern(const std::string& pattern) : mPieces(pattern) {
    if (pattern.size() > kLongestPattern) {
        logBad(pattern, "too long");
        return;
    }
    if (hasLongNumber(pattern)) {
        logBad(pattern, "a number in it is too large");
        return;
    }
    [[maybe_unused]] static const bool isLocalePrepared = (prepareLocale(), true); // before any thread matches
    try {
        mRegex.emplace(pattern, kNoRecursion);
        return;
    } catch (const std::regex_error&) { // malformed, or it has back-references
    }
    try {
        mRegex.emplace(pattern, std::regex_constants::ECMAScript);
        mShortTextsOnly = true;
    } catch (const std::regex_error& error) {
        logBad(pattern, error.what());
    }
}

bool OrvelPattern::matches(std::string_view text) const {
    if (!mRegex || (mShortTextsOnly && text.size() > kShortText)) {
        return false;
    }
    if (const auto verdict = mPieces.look(text); verdict != OrvelPatternPieces::ASK_MATCHER) {
        return verdict == OrvelPatternPieces::MATCH;
    }
    try {
        return std::regex_match(text.begin(), text.end(), *mRegex);
    } catch (const std::exception&) { // no memory, or a matcher that gives up
        return false;
    }
}

} // namespace android::orvel
