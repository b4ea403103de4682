#include "base/OrvelPatternPieces.h"

#include <cctype>
#include <optional>

namespace android::orvel {

namespace {

/** One element of a pattern, without its quantifier. */
struct Atom {
    size_t length;
    bool isLiteral;
    char character; // of a literal
};

/** @return the length of the class that rest begins with; 0 if it is none or its end takes a matcher to find */
size_t classLength(std::string_view rest) {
    for (size_t i = 1; i < rest.size() && rest[i] != '['; ++i) {
        if (rest[i] == ']') {
            return i + 1;
        }
        if (rest[i] == '\\') {
            ++i;
            if (i < rest.size() && rest[i] == 'c') { // a control character, made of the next one, "]" too
                return 0;
            }
        }
    }
    return 0;
}

/** @return what rest begins with, or nothing when that is unusual */
std::optional<Atom> atomAt(std::string_view rest) {
    switch (const char first = rest[0]) {
    case '(':
    case ')':
    case '|':
    case '*':
    case '+':
    case '?':
    case '{':
    case '}':
    case ']':
    case '\0':
        return std::nullopt;
    case '.':
    case '^':
    case '$':
        return Atom{1, false, first};
    case '[':
        if (const size_t length = classLength(rest)) {
            return Atom{length, false, first};
        }
        return std::nullopt;
    case '\\':
        if (rest.size() < 2) {
            return std::nullopt;
        }
        if (!std::isalnum(static_cast<unsigned char>(rest[1]))) {
            return Atom{2, true, rest[1]};
        }
        if (std::string_view("dDwWsSbB").find(rest[1]) != std::string_view::npos) {
            return Atom{2, false, first};
        }
        return std::nullopt; // a control character, a number, a back-reference
    default:
        return Atom{1, true, first};
    }
}

/** @return the length of the quantifier that rest begins with, 0 without one; nothing when it has no end */
std::optional<size_t> quantifierLength(std::string_view rest) {
    if (rest.empty() || std::string_view("*+?{").find(rest[0]) == std::string_view::npos) {
        return 0;
    }
    size_t length = 1;
    if (rest[0] == '{') {
        const size_t end = rest.find('}');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        length = end + 1;
    }
    const bool isLazy = length < rest.size() && rest[length] == '?'; // makes no difference to a full match
    return length + (isLazy ? 1 : 0);
}

} // namespace

OrvelPatternPieces::OrvelPatternPieces(std::string_view pattern) {
    if (!read(pattern)) {
        mPieces = {"", ""}; // which every text has
        mOnlyLiterals = false;
    }
}

bool OrvelPatternPieces::read(std::string_view pattern) {
    mPieces.emplace_back();
    while (!pattern.empty()) {
        const std::optional<Atom> atom = atomAt(pattern);
        if (!atom) {
            return false;
        }
        pattern.remove_prefix(atom->length);
        const std::optional<size_t> quantifier = quantifierLength(pattern);
        if (!quantifier) {
            return false;
        }
        const bool isAnything = !atom->isLiteral && atom->character == '.' && pattern.starts_with('*');
        pattern.remove_prefix(*quantifier);
        if (atom->isLiteral && *quantifier == 0) {
            mPieces.back() += atom->character;
            continue;
        }
        mPieces.emplace_back();
        mOnlyLiterals = mOnlyLiterals && isAnything;
    }
    return true;
}

OrvelPatternPieces::Verdict OrvelPatternPieces::look(std::string_view text) const {
    if (mPieces.size() == 1) {
        return text == mPieces[0] ? MATCH : NO_MATCH;
    }
    std::string_view rest = text;
    if (!rest.starts_with(mPieces.front())) {
        return NO_MATCH;
    }
    rest.remove_prefix(mPieces.front().size());
    if (!rest.ends_with(mPieces.back())) {
        return NO_MATCH;
    }
    rest.remove_suffix(mPieces.back().size());
    for (size_t i = 1; i + 1 < mPieces.size(); ++i) {
        const size_t at = rest.find(mPieces[i]);
        if (at == std::string_view::npos) {
            return NO_MATCH;
        }
        rest.remove_prefix(at + mPieces[i].size());
    }
    constexpr std::string_view kLineBreaks = "\n\r"; // what "." does not match
    return mOnlyLiterals && text.find_first_of(kLineBreaks) == std::string_view::npos ? MATCH : ASK_MATCHER;
}

} // namespace android::orvel
