// Lines of a small text file that a service may rewrite at any time.
#pragma once

#include <android-base/unique_fd.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace android::orvel {

/** Reads a file line by line while a game runs: nothing here allocates, waits or throws. */
class OrvelLineReader {
public:
    static constexpr size_t kLongestLine = 4096;

    /** @return whether the file could be opened; errno is set if not. A file opened before is closed. */
    bool open(const std::string& path);

    /**
     * @return the next line without its newline, good until the next call, cut off after kLongestLine + 1 characters
     *         (the rest is then the next line); nothing, and errno set, at the end (ENODATA) or when reading fails
     */
    std::optional<std::string_view> next();

    void close() { mFile.reset(); }

private:
    base::unique_fd mFile;
    size_t mStart = 0;              // of the text that was read and not yet handed out
    size_t mEnd = 0;                // behind it
    char mBuffer[kLongestLine + 1]; // one more: it tells a line that just fits from a longer one
};

} // namespace android::orvel
