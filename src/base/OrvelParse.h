// Numbers and lists in configuration texts. Nothing here throws for bad input.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace android::orvel {

/**
 * Reads a decimal integer the way std::stoi does: leading blanks and a sign are accepted, reading stops at the first
 * character that is no digit ("12x" is 12).
 * @return the number, or nothing when the text does not start with one or it does not fit 32 bits
 */
std::optional<int32_t> parseInt(const std::string& text);

/**
 * Splits text at every character that occurs in delimiters; empty pieces vanish.
 * @return the pieces in order; the whole text as one piece when delimiters is empty
 */
std::vector<std::string> splitText(const std::string& text, const std::string& delimiters);

} // namespace android::orvel
