// The watched file of dynamic resolution: one line with a package, a width and a height.
#pragma once

#include "base/OrvelLineReader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace android::orvel {

/** Read again and again while a game runs, so nothing here allocates once the object exists. */
class DrConfigFile {
public:
    /** What a line asks for. */
    struct Request {
        std::string_view package; // a package's name or a part of one; lies in the line
        int32_t width;
        int32_t height;
    };

    /** @param path absolute path on a device */
    explicit DrConfigFile(const char* path);

    /**
     * Reads the file's first line.
     * @return the line without its newline, good until the next call, cut off when it is longer than an
     *         OrvelLineReader's; nothing, and errno set, when there is none
     */
    std::optional<std::string_view> readLine();

    /**
     * Takes the three fields as a stream's >> would; what follows them is ignored.
     * @return nothing, and errno set, when one is missing or no number of 32 bits, or lies too far behind
     */
    static std::optional<Request> parse(std::string_view line);

private:
    std::string mPath;
    OrvelLineReader mReader;
};

} // namespace android::orvel
