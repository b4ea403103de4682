// Dynamic frame interval: at which interval frames are repeated, and how fast the game draws.
#pragma once

#include "legacy/SwitchFile.h"

#include <cstdint>
#include <string>

namespace android {

/** One instance for the process, used on the game's rendering thread. */
class OrvelDFI {
public:
    static OrvelDFI& getInstance();

    OrvelDFI() = default;

    /** Reads the interval for that package from the watched file; a failure keeps the interval there is. */
    void updateDFIIntervalConfig(std::string packageName);
    /** Once per frame: reads the file, at first and then whenever it was written. */
    void doDFIInterval();
    /** @return milliseconds; below 1: none */
    int32_t getDFIInterval() const { return mDFIInterval; }

    /** Once per frame: takes the time since the last one into the measured rate. */
    void updateSourceFps();
    /** @return frames per second, of the latest 50 frames; 0 until there were so many */
    int32_t getSourceFps() const { return mSourceFps; }

private:
    int32_t mDFIInterval = -1;
    std::string mPackageName;
    orvel::SwitchFile mFile{"/data/system/mcd/dfi", "DFI"};
    int64_t mLastFrameTime = 0; // nanoseconds
    int32_t mSourceFps = 0;
    int32_t mFrameCount = 0;
    int32_t mFrameTimeSum = 0; // microseconds, of the batch
};

} // namespace android
