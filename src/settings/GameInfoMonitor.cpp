#include "settings/GameInfoMonitor.h"

#include "base/OrvelClock.h"
#include "base/OrvelGuard.h"
#include "base/OrvelLog.h"
#include "base/OrvelPaths.h"
#include "settings/OrvelDebugProperty.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <locale>
#include <sstream>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace android {

namespace {

constexpr char kGameInfoPath[] = "/data/system/mcd/gameInfo";

enum InfoType {
    INFO_SCENE_ID = 1,
    INFO_PICTURE = 2,
    INFO_VRS_LEVEL = 3,
    INFO_COMMON_VRS = 4,
    INFO_FILTER = 5,
};

constexpr int kPictureKeyImageQuality = 8;
constexpr int kPictureKey10 = 10;
constexpr int kPictureKey54 = 54;

constexpr int64_t kRetryMicros = 1'000'000;

bool failed(const char* format) {
    ORVEL_LOGE(format, strerror(errno));
    return false;
}

} // namespace

GameInfoMonitor& GameInfoMonitor::getInstance() {
    static GameInfoMonitor monitor;
    return monitor;
}

GameInfoMonitor::GameInfoMonitor()
    : mPath(*new std::string(orvel::systemPath(kGameInfoPath))),
      mProcess(getpid()),
      mDebug(orvel::isDebugPropertySet()) {
    ORVEL_LOGI("Orvel GameInfoMonitor construct");
}

GameInfoMonitor::~GameInfoMonitor() {
    // The process ends, and the thread with it, a moment later. Removing the watch wakes it once more: a name without
    // memory of its own is safe to compare even then.
    setPackageName("");
    const int32_t fd = mInotifyFd.exchange(-1);   // the thread must not read from what the game opens under this number
    if (mWatchFd != -1 && mProcess == getpid()) { // a forked child shares the watch with its parent, who needs it
        inotify_rm_watch(fd, mWatchFd);
    }
    if (fd != -1) {
        close(fd);
    }
    ORVEL_LOGI("Orvel GameInfoMonitor destroyed");
}

void GameInfoMonitor::start() {
    if (mStarted) {
        return;
    }
    if (mInotifyFd == -1) {
        mInotifyFd = inotify_init1(IN_CLOEXEC); // not for the programs that a game starts
    }
    if (mWatchFd == -1) {
        mWatchFd = inotify_add_watch(mInotifyFd, mPath.c_str(), IN_CLOSE_WRITE);
    }
    if (mInotifyFd == -1 || mWatchFd == -1) {
        ORVEL_LOGE("Orvel fail to use INO for game info: %s", strerror(errno));
        return;
    }
    mRunning = true;
    if (pthread_create(&mThread, nullptr, threadProcess, this) != 0) {
        ORVEL_LOGE("Orvel create game info monitor thread failed");
        return;
    }
    pthread_setname_np(mThread, "GIM_thread");
    pthread_detach(mThread); // nobody joins it: it lives until the process ends
    mStarted = true;
}

void* GameInfoMonitor::threadProcess(void* self) {
    static_cast<GameInfoMonitor*>(self)->eventProcess();
    return nullptr;
}

void GameInfoMonitor::eventProcess() {
    if (!mRunning) {
        return;
    }
    ORVEL_LOGD_IF(mDebug, "start GameInfoMonitor thread");
    for (;;) {
        const int32_t fd = mInotifyFd;
        if (fd == -1) { // the process ends
            pause();
            continue;
        }
        mReadLength = static_cast<int32_t>(read(fd, mEvents, sizeof mEvents));
        if (mReadLength < 1) {
            if (mReadLength < 0 && errno != EINTR) { // a game that closes what it does not know closed the descriptor
                orvel::sleepMicros(kRetryMicros);
            }
            continue;
        }
        orvel::guarded("Orvel reading game info", [this] { updateGameInfo(); }); // a line may be larger than memory
        mReadLength = -1;
    }
}

void GameInfoMonitor::updateGameInfo() {
    std::ifstream file(mPath);
    if (!file) {
        ORVEL_LOGE("Orvel open scendId path error: %s", strerror(errno)); // known by this text, whatever was opened
        return;
    }
    std::string text;
    while (std::getline(file, text)) {
        ORVEL_LOGI_IF(mDebug, "gameInfo changed: %s", text.c_str());
        std::istringstream line(text);
        line.imbue(std::locale::classic()); // whatever the game's locale says of digits
        if (!applyLine(line)) {
            return;
        }
    }
}

/** @return false when the line is malformed: what follows it in the file is then not trusted either */
bool GameInfoMonitor::applyLine(std::istream& line) {
    int type = 0;
    if (!(line >> type)) {
        return failed("Orvel parse game infoType error: %s");
    }
    std::string package;
    int value = 0;
    switch (type) {
    case INFO_SCENE_ID:
        if (!(line >> package >> value)) {
            return failed("parse game sceneId error: %s");
        }
        parseGameSceneId(std::move(package), value);
        return true;
    case INFO_PICTURE: {
        // Deliberate: picture information and shading level are taken whatever package the line names.
        int key = 0;
        if (!(line >> package >> key >> value)) {
            return failed("parse game pictureInfo error: %s");
        }
        parseGamePictureInfo(key, value);
        return true;
    }
    case INFO_VRS_LEVEL:
        if (!(line >> package >> value)) {
            return failed("parse game vrsLevel error: %s");
        }
        parseGameVrsLevel(value);
        return true;
    case INFO_COMMON_VRS:
        if (!(line >> package >> value)) {
            return failed("parse commonVrs error: %s");
        }
        parseCommonVrs(std::move(package), value);
        return true;
    case INFO_FILTER: {
        int strength = 0;
        int darkEdge = 0;
        if (!(line >> package >> value >> strength >> darkEdge)) {
            return failed("parse filter config error: %s");
        }
        parseFilterConfig(std::move(package), value, strength, darkEdge);
        return true;
    }
    default:
        ORVEL_LOGE("unknown game info type: %d", type);
        return true;
    }
}

void GameInfoMonitor::parseGameSceneId(std::string package, int id) {
    ORVEL_LOGI_IF(mDebug, "parseGameSceneId: %s %d", package.c_str(), id);
    if (isOwnPackage(package)) {
        mGameInfo.mSceneId = id;
    }
}

void GameInfoMonitor::parseGamePictureInfo(int key, int value) {
    ORVEL_LOGI_IF(mDebug, "parseGamePictureInfo: %d %d", key, value);
    switch (key) {
    case kPictureKeyImageQuality:
        mGameInfo.mImageQuality = value;
        break;
    case kPictureKey54:
        mGameInfo.mPicKey54 = value;
        break;
    case kPictureKey10:
        mGameInfo.mPicKey10 = value;
        break;
    default:
        break;
    }
}

void GameInfoMonitor::parseGameVrsLevel(int level) {
    ORVEL_LOGI_IF(mDebug, "parseGameVrsLevel: %d", level);
    mGameInfo.mVrsLevel = level;
}

void GameInfoMonitor::parseCommonVrs(std::string package, int value) {
    ORVEL_LOGI_IF(mDebug, "parseCommonVrs: %s %d", package.c_str(), value);
    if (isOwnPackage(package)) {
        mGameInfo.mSmallWindow = value == 1;
    }
}

void GameInfoMonitor::parseFilterConfig(std::string package, int type, int strength, int darkEdge) {
    ORVEL_LOGI_IF(mDebug, "parseFilterConfig: %s %d %d %d", package.c_str(), type, strength, darkEdge);
    if (isOwnPackage(package)) {
        mGameInfo.mFilterType = type;
        mGameInfo.mLutStrength = strength;
        mGameInfo.mDarkEdge = darkEdge;
    }
}

void GameInfoMonitor::setPackageName(std::string name) {
    const std::lock_guard lock(mPackageMutex);
    mPackageName.swap(name);
}

bool GameInfoMonitor::isOwnPackage(const std::string& package) {
    const std::lock_guard lock(mPackageMutex);
    return !mPackageName.empty() && std::strcmp(mPackageName.c_str(), package.c_str()) == 0;
}

} // namespace android
