#include "legacy/DrConfigFile.h"

#include "base/OrvelParse.h"
#include "base/OrvelPaths.h"

#include <cerrno>

namespace android::orvel {

DrConfigFile::DrConfigFile(const char* path) : mPath(systemPath(path)) {}

std::optional<std::string_view> DrConfigFile::readLine() {
    if (!mReader.open(mPath)) {
        return std::nullopt;
    }
    const auto line = mReader.next();
    mReader.close();
    return line;
}

std::optional<DrConfigFile::Request> DrConfigFile::parse(std::string_view line) {
    const bool cut = line.size() > OrvelLineReader::kLongestLine;
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
