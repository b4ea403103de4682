#include "base/OrvelLineReader.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace android::orvel {

bool OrvelLineReader::open(const std::string& path) {
    // Not blocking: should a pipe lie there, the game does not wait for someone to write.
    mFile.reset(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    mStart = mEnd = 0;
    return mFile.ok();
}

std::optional<std::string_view> OrvelLineReader::next() {
    std::memmove(mBuffer, mBuffer + mStart, mEnd - mStart);
    mEnd -= mStart;
    mStart = 0;
    size_t searched = 0;
    for (;;) {
        if (const void* newline = std::memchr(mBuffer + searched, '\n', mEnd - searched)) {
            const auto length = static_cast<size_t>(static_cast<const char*>(newline) - mBuffer);
            mStart = length + 1;
            return std::string_view(mBuffer, length);
        }
        searched = mEnd;
        if (mEnd == sizeof mBuffer) {
            break;
        }
        const ssize_t got = read(mFile.get(), mBuffer + mEnd, sizeof mBuffer - mEnd);
        if (got < 0) {
            return std::nullopt;
        }
        if (got == 0) {
            break;
        }
        mEnd += static_cast<size_t>(got);
    }
    if (mEnd == 0) {
        errno = ENODATA;
        return std::nullopt;
    }
    mStart = mEnd; // a line without a newline: the last one, or a very long one
    return std::string_view(mBuffer, mEnd);
}

} // namespace android::orvel
