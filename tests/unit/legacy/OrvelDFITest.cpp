#include "legacy/OrvelDFI.h"

#include "FakeClock.h"
#include "LogCapture.h"
#include "TestRoot.h"
#include "settings/OrvelSettings.h"

#include <gtest/gtest.h>

using namespace android;

namespace {

class FrameInterval : public testing::Test {
protected:
    void SetUp() override { orvel::OrvelSettings::getInstance().mPackageName = "com.example.game"; }
    void write(const std::string& text) { mRoot.write("/data/system/mcd/dfi", text); }
    void frames(int count, int64_t micros) {
        for (int i = 0; i < count; ++i) {
            mClock.advanceNanos(micros * 1000);
            mDfi.updateSourceFps();
        }
    }

    TestRoot mRoot;
    FakeClock mClock;
    OrvelDFI mDfi;
};

} // namespace

// Catches a rate that is cut off, a batch of another length, and gaps that count or do not move the clock.
TEST_F(FrameInterval, MeasuresBatchesOfFiftyFrames) {
    mClock.advanceMillis(1'000'000);
    mDfi.updateSourceFps(); // the first one has nothing to be measured from
    frames(49, 16'667);
    EXPECT_EQ(mDfi.getSourceFps(), 0);
    frames(30, 1'499);
    frames(30, 125'001);
    EXPECT_EQ(mDfi.getSourceFps(), 0);
    frames(1, 16'667);
    EXPECT_EQ(mDfi.getSourceFps(), 60);
    frames(49, 1'501);
    frames(1, 1'500); // whole microseconds on average, then rounded
    EXPECT_EQ(mDfi.getSourceFps(), 667);
    frames(50, 125'000);
    EXPECT_EQ(mDfi.getSourceFps(), 8);
}

// Catches a file that is watched although it gave no interval or not watched although it did, an interval that is lost
// when the file turns bad, and one of another package.
TEST_F(FrameInterval, FollowsTheFile) {
    LogCapture log;
    OrvelDFI early;
    early.doDFIInterval();
    EXPECT_TRUE(log.has(ANDROID_LOG_ERROR, "DFI open fail: No such file or directory"));
    const auto interval = [&](const std::string& text) {
        log.clear();
        write(text);
        mDfi.doDFIInterval();
        return mDfi.getDFIInterval();
    };
    EXPECT_EQ(interval("com.other 10\nexample 16 ms\n"), 16);
    EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "DFI Info: com.example.game : 16"));
    early.doDFIInterval();
    EXPECT_EQ(early.getDFIInterval(), -1);
    EXPECT_EQ(interval("com.other 20"), 20); // once it is watched the first line decides
    EXPECT_EQ(interval("game x"), 20);
    EXPECT_TRUE(log.has(ANDROID_LOG_ERROR, "DFI parse error: game x"));
    EXPECT_EQ(interval(""), 20);
    EXPECT_EQ(interval("game -5"), -5);
    log.clear();
    mDfi.doDFIInterval();
    EXPECT_TRUE(log.lines().empty()); // nothing new
}
