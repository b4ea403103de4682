// Live information about the running game, from a text file that the tuning service rewrites while the game runs.
#pragma once

#include "base/OrvelFileEvents.h"
#include "base/Relaxed.h"

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <mutex>
#include <pthread.h>
#include <string>

namespace android {

/**
 * What the file last said about this process. The monitor thread writes, render threads read, without a lock: a reader
 * may see the fields of one update partly applied, the three filter fields included.
 */
struct GameInfo {
    orvel::Relaxed<int32_t> mImageQuality = 0; // picture key 8
    orvel::Relaxed<int32_t> mPicKey54 = 0;
    orvel::Relaxed<int32_t> mPicKey10 = -1;
    orvel::Relaxed<int32_t> mSceneId = 0;
    orvel::Relaxed<bool> mSmallWindow = false;
    orvel::Relaxed<int32_t> mVrsLevel = 0;
    orvel::Relaxed<int32_t> mFilterType = 0;
    orvel::Relaxed<int32_t> mLutStrength = 100; // percent
    orvel::Relaxed<int32_t> mDarkEdge = 0;
};

class GameInfoMonitor {
public:
    /** Constructed on first use; it watches nothing before start(). */
    static GameInfoMonitor& getInstance();
    ~GameInfoMonitor();
    GameInfoMonitor(const GameInfoMonitor&) = delete;
    GameInfoMonitor& operator=(const GameInfoMonitor&) = delete;

    /**
     * Watches "/data/system/mcd/gameInfo", which must exist, from a thread that lives until the process ends. The file
     * is read whenever a writer closes it, not now. Does nothing once it has succeeded; a failure is logged and may be
     * tried again.
     */
    void start();

    /** The loop of the monitor thread; returns at once unless start() came that far, else never. */
    static void* threadProcess(void* self);
    void eventProcess();

    /** Reads the file and applies its lines in order, up to the first that is malformed. */
    void updateGameInfo();

    void parseGameSceneId(std::string package, int id);
    void parseGamePictureInfo(int key, int value);
    void parseGameVrsLevel(int level);
    void parseCommonVrs(std::string package, int value);
    void parseFilterConfig(std::string package, int type, int strength, int darkEdge);

    /**
     * @param name what the lines of this process are marked with; compared up to its first zero byte, so that a whole
     *        command line will do. An empty name matches no line.
     */
    void setPackageName(std::string name);

    const GameInfo& getGameInfo() const { return mGameInfo; }

private:
    GameInfoMonitor();
    bool applyLine(std::istream& line);
    bool isOwnPackage(const std::string& package);

    const std::string& mPath; // never freed: the thread outlives this object when the process ends
    const pid_t mProcess;
    pthread_t mThread{};
    bool mStarted = false;
    const bool mDebug;
    std::atomic<int32_t> mInotifyFd{-1}; // the monitor thread reads it while the process ends
    int32_t mWatchFd = -1;
    int32_t mReadLength = -1;
    char mEvents[orvel::kFileEventBytes]; // received and not looked at: any event means that the file changed
    bool mRunning = false;
    GameInfo mGameInfo;
    std::mutex mPackageMutex; // the name comes from the thread that starts the library, after the monitor was started
    std::string mPackageName;
};

} // namespace android
