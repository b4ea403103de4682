// A regular expression from the configuration, safe to use on a game's threads.
#pragma once

#include "base/OrvelPatternPieces.h"

#include <optional>
#include <regex>
#include <string>
#include <string_view>

namespace android::orvel {

/**
 * An ECMAScript pattern that is matched in full. Compile it once, when the configuration is read or a module made.
 *
 * The usual matcher recurses for every character, which ends a thread with a small stack, and some patterns take it
 * exponential time. This one takes a matcher that does neither; only a pattern with back-references needs the usual
 * one, and is then not tried on long texts. Any matcher asks for memory and time, so what a look at the pattern's
 * literal pieces can decide never gets to one.
 */
class OrvelPattern {
public:
    /**
     * A pattern that does not compile or has more than 1,024 characters is logged and matches nothing.
     * @throw std::bad_alloc
     */
    explicit OrvelPattern(const std::string& pattern);

    bool isValid() const { return mRegex.has_value(); }
    /** @return whether the whole text matches; false when there is no memory to find out. Any thread. */
    bool matches(std::string_view text) const;

private:
    OrvelPatternPieces mPieces;
    std::optional<std::regex> mRegex;
    bool mShortTextsOnly = false;
};

} // namespace android::orvel
