#include "base/OrvelPattern.h"

#include "base/OrvelLog.h"
#include "base/OrvelParse.h"

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
