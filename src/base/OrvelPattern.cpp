#include "base/OrvelPattern.h"

#include "base/OrvelLog.h"
#include "base/OrvelParse.h"

#include <exception>

namespace android::orvel {

namespace {

constexpr size_t kShortText = 256; // characters; about 100 bytes of stack each

/** What makes the library's matcher walk all ways at once instead of one after the other, where it can. */
constexpr auto kNoRecursion =
#ifdef __GLIBCXX__
    std::regex_constants::ECMAScript | std::regex_constants::__polynomial;
#else
    std::regex_constants::ECMAScript;
#endif

} // namespace

OrvelPattern::OrvelPattern(const std::string& pattern) : mPieces(pattern) {
    try {
        mRegex.emplace(pattern, kNoRecursion);
        return;
    } catch (const std::regex_error&) { // malformed, or it has back-references
    }
    try {
        mRegex.emplace(pattern, std::regex_constants::ECMAScript);
        mShortTextsOnly = true;
    } catch (const std::regex_error& error) {
        ORVEL_LOGE("bad pattern \"%s\": %s", oneLine(pattern).c_str(), error.what());
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
