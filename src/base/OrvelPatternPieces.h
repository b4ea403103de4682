// What a pattern says in plain characters.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace android::orvel {

/**
 * The literal pieces of an ECMAScript pattern, and whether there is more to it. A matching text begins with the first
 * piece, ends with the last one and has the others between them, in order. Comparing those is so much cheaper than a
 * matcher that nearly every label is refused, and most configured patterns are decided, without one.
 */
class OrvelPatternPieces {
public:
    enum Verdict {
        NO_MATCH,
        MATCH,
        ASK_MATCHER,
    };

    /** A pattern with groups, alternatives or anything unusual has no pieces: the matcher is asked about every text. */
    explicit OrvelPatternPieces(std::string_view pattern);

    Verdict look(std::string_view text) const;

private:
    bool read(std::string_view pattern);

    std::vector<std::string> mPieces; // one more than there are gaps
    bool mOnlyLiterals = true;        // each gap is ".*"
};

} // namespace android::orvel
