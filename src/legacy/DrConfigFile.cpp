#include "legacy/DrConfigFile.h"

#include "base/OrvelPaths.h"

#include <android-base/unique_fd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace android::orvel {

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

/** Removes the leading blanks, then what follows up to the next blank. @return what followed */
std::string_view takeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

/** Removes the leading blanks and the integer behind them, which may end in the middle of a word ("1280abc"). */
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

} // namespace

DrConfigFile::DrConfigFile(const char* path) : mPath(systemPath(path)) {}

std::optional<std::string_view> DrConfigFile::readLine() {
    // Not blocking: should a pipe lie there, the game does not wait for someone to write.
    const base::unique_fd file(open(mPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file < 0) {
        return std::nullopt;
    }
    size_t size = 0;
    while (size < sizeof mBuffer) {
        char* const free = mBuffer + size;
        const ssize_t got = read(file.get(), free, sizeof mBuffer - size);
        if (got < 0) {
            return std::nullopt;
        }
        if (got == 0) {
            break;
        }
        if (const void* newline = std::memchr(free, '\n', static_cast<size_t>(got))) {
            return std::string_view(mBuffer, static_cast<const char*>(newline));
        }
        size += static_cast<size_t>(got);
    }
    if (size == 0) {
        errno = ENODATA;
        return std::nullopt;
    }
    return std::string_view(mBuffer, size);
}

std::optional<DrConfigFile::Request> DrConfigFile::parse(std::string_view line) {
    const bool cut = line.size() > kLongestLine;
    Request request{takeWord(line), 0, 0};
    const bool complete = takeInt(line, request.width) && takeInt(line, request.height);
    if (cut && line.empty()) { // a field runs into what was not read
        errno = EMSGSIZE;
        return std::nullopt;
    }
    if (!complete) {
        return std::nullopt;
    }
    return request;
}

} // namespace android::orvel
