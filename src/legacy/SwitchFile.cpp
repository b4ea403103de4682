#include "legacy/SwitchFile.h"

#include "base/OrvelLineReader.h"
#include "base/OrvelLog.h"
#include "base/OrvelParse.h"
#include "base/OrvelPaths.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

namespace android::orvel {

SwitchFile::SwitchFile(const char* path, const char* name) : mPath(systemPath(path)), mName(name) {}

SwitchFile::~SwitchFile() {
    if (mWatchFd != -1) {
        inotify_rm_watch(mINotifyFd, mWatchFd);
    }
    if (mINotifyFd != -1) {
        close(mINotifyFd);
    }
}

std::optional<int32_t> SwitchFile::read(const std::string& package) const {
    OrvelLineReader reader;
    if (!reader.open(mPath)) {
        ORVEL_LOGE("%s open fail: %s", mName, strerror(errno));
        return std::nullopt;
    }
    while (const auto line = reader.next()) {
        std::string_view rest = *line;
        const std::string_view word = takeWord(rest);
        int32_t value = 0;
        const bool parsed = takeInt(rest, value);
        const bool cut = line->size() > OrvelLineReader::kLongestLine && rest.empty();
        if (!parsed || cut) {
            constexpr size_t kLongestLogged = 200;
            const auto shown = static_cast<int>(std::min(line->size(), kLongestLogged));
            ORVEL_LOGE("%s parse error: %.*s", mName, shown, line->data());
            return std::nullopt;
        }
        if (mINotifyActive || package.find(word) != std::string::npos) {
            return value;
        }
    }
    if (errno != ENODATA) {
        ORVEL_LOGE("%s open fail: %s", mName, strerror(errno)); // opened, but cannot be read: a folder, for example
    }
    return std::nullopt;
}

void SwitchFile::watch() {
    if (mINotifyFd == -1) {
        mINotifyFd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    }
    if (mWatchFd == -1) {
        mWatchFd = inotify_add_watch(mINotifyFd, mPath.c_str(), IN_CLOSE_WRITE);
    }
    mINotifyActive = mINotifyFd != -1 && mWatchFd != -1;
    if (!mINotifyActive) {
        ORVEL_LOGE("Fail to use INO for %s", mName);
    }
}

bool SwitchFile::wasWritten() {
    if (!mINotifyActive) {
        return false;
    }
    mEventBytes = ::read(mINotifyFd, mEventBuffer, sizeof mEventBuffer);
    const bool written = mEventBytes >= 1; // the events tell no more than that
    mEventBytes = -1;
    return written;
}

} // namespace android::orvel
