#include "base/OrvelParse.h"

#include <cerrno>
#include <cstdlib>
#include <limits>

namespace android::orvel {

std::optional<int32_t> parseInt(const std::string& text) {
    const char* begin = text.c_str();
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(begin, &end, 10);
    const bool inRange =
        errno == 0 && value >= std::numeric_limits<int32_t>::min() && value <= std::numeric_limits<int32_t>::max();
    if (end == begin || !inRange) {
        return std::nullopt;
    }
    return static_cast<int32_t>(value);
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

} // namespace android::orvel
