// A small file by which the system switches a feature while a game runs: lines of a package's name and a number.
#pragma once

#include "base/OrvelFileEvents.h"

#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>

namespace android::orvel {

/** Watched without a thread: whoever owns it looks for news once per frame. Not for two threads at a time. */
class SwitchFile {
public:
    /**
     * @param path absolute path on a device
     * @param name what log lines call the feature
     */
    SwitchFile(const char* path, const char* name);
    ~SwitchFile();
    SwitchFile(const SwitchFile&) = delete;
    SwitchFile& operator=(const SwitchFile&) = delete;

    /**
     * Looks for the package's number: the first line whose word occurs in the name decides. Deliberate: once the file
     * is watched its first line decides, whatever the word; the system then writes for the game that runs.
     * @return nothing when no line matches, and, with an error line in the log, when the file cannot be read or a line
     *         before the decision is no word and number
     */
    std::optional<int32_t> read(const std::string& package) const;

    /** Starts watching for writes. Logs an error when that fails; the file is then never watched. */
    void watch();

    /** @return whether the file was written since the last time; false when it is not watched */
    bool wasWritten();

private:
    const std::string mPath;
    const char* const mName;
    int mINotifyFd = -1;
    int mWatchFd = -1;
    ssize_t mEventBytes = -1;
    char mEventBuffer[kFileEventBytes];
    bool mINotifyActive = false;
};

} // namespace android::orvel
