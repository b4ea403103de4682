#include "base/OrvelParse.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <system_error>

namespace android::orvel {

std::optional<int32_t> parseInt(std::string_view text) {
    int32_t number = 0;
    return takeInt(text, number) ? std::optional(number) : std::nullopt;
}

std::vector<std::string> splitText(const std::string& text, const std::string& delimiters) {
    std::vector<std::string> pieces;
    size_t begin = text.find_first_not_of(delimiters);
    while (begin != std::string::npos) {
        const size_t end = text.find_first_of(delimiters, begin);
        pieces.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(delimiters, end);
    }
    return pieces;
}

std::string oneLine(std::string text) {
    constexpr size_t kMostLogged = 200;
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return std::iscntrl(c); }, ' ');
    if (text.size() > kMostLogged) {
        text.replace(kMostLogged, text.npos, "...");
    }
    return text;
}

static constexpr std::string_view kBlanks = " \t\n\v\f\r";

std::string_view takeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

bool takeInt(std::string_view& text, int32_t& number) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc()) {
        errno = static_cast<int>(error); // EINVAL or ERANGE
        return false;
    }
    text.remove_prefix(static_cast<size_t>(rest - text.data()));
    return true;
}

} // namespace android::orvel
