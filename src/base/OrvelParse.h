// Numbers and lists in configuration texts. Nothing here throws for bad input.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace android::orvel {

/**
 * Reads a decimal integer the way std::stoi does: leading blanks and a sign are accepted, reading stops at the first
 * character that is no digit ("12x" is 12).
 * @return the number, or nothing when the text does not start with one or it does not fit 32 bits
 */
std::optional<int32_t> parseInt(std::string_view text);

/**
 * Splits text at every character that occurs in delimiters; empty pieces vanish.
 * @return the pieces in order; the whole text as one piece when delimiters is empty
 */
std::vector<std::string> splitText(const std::string& text, const std::string& delimiters);

/** @return somebody else's text as it can stand in one log line: without control characters, cut off when it is long */
std::string oneLine(std::string text);

// The fields of a line, taken one after the other as a stream's >> would.

/** Removes the leading blanks, then what follows up to the next blank. @return what followed */
std::string_view takeWord(std::string_view& text);

/**
 * Removes the leading blanks and the integer behind them, which may end in the middle of a word ("1280abc").
 * @return whether there was one that fits 32 bits; errno is set if not
 */
bool takeInt(std::string_view& text, int32_t& number);

} // namespace android::orvel
