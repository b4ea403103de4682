#include "legacy/OrvelDFI.h"

#include "base/OrvelClock.h"
#include "base/OrvelLog.h"
#include "settings/OrvelSettings.h"

#include <cmath>

namespace android {

namespace {

constexpr int kBatch = 50;                     // frames
constexpr int64_t kShortestFrameMicros = 1500; // pauses and swaps in quick succession say nothing about the rate
constexpr int64_t kLongestFrameMicros = 125'000;

} // namespace

OrvelDFI& OrvelDFI::getInstance() {
    static OrvelDFI& instance = *new OrvelDFI; // never destroyed: hooks may still run while the process ends
    return instance;
}

void OrvelDFI::updateDFIIntervalConfig(std::string packageName) {
    if (const auto interval = mFile.read(packageName)) {
        mDFIInterval = *interval;
        ORVEL_LOGI("DFI Info: %s : %d", packageName.c_str(), mDFIInterval);
    }
}

void OrvelDFI::doDFIInterval() {
    if (mPackageName.empty()) {
        mPackageName = orvel::OrvelSettings::getInstance().mPackageName.string();
        updateDFIIntervalConfig(mPackageName);
        if (mDFIInterval >= 0) {
            mFile.watch();
        }
    }
    if (mFile.wasWritten()) {
        updateDFIIntervalConfig(mPackageName);
    }
}

void OrvelDFI::updateSourceFps() {
    const int64_t now = orvel::monotonicNanos();
    const int64_t micros = (now - mLastFrameTime) / 1000;
    mLastFrameTime = now;
    if (micros < kShortestFrameMicros || micros > kLongestFrameMicros) {
        return;
    }
    mFrameTimeSum += static_cast<int32_t>(micros);
    if (++mFrameCount == kBatch) {
        mSourceFps = static_cast<int32_t>(std::round(1'000'000.0 / (mFrameTimeSum / kBatch)));
        mFrameCount = 0;
        mFrameTimeSum = 0;
    }
}

} // namespace android
