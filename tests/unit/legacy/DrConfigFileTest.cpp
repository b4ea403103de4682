#include "legacy/DrConfigFile.h"

#include "legacy/DynamicResolutionGame.h"

#include <gmock/gmock.h>

#include <cutils/properties.h>
#include <filesystem>

using namespace android;
using namespace std::string_literals;

// Catches a look at the file before its time, a rounded interval, and one below 10 ms taken as it is.
TEST_F(DynamicResolution, LooksAtTheFileOncePerInterval) {
    for (const auto& [interval, millis] : {std::pair{0, 10}, {25, 25}}) {
        start("com.example.game", false, interval);
        LogCapture log; // each look says that there is no file
        const auto looks = [&] {
            drrOnEglSwapBuffersEnd();
            const auto lines = log.texts(ANDROID_LOG_ERROR);
            return std::count(lines.begin(), lines.end(), "OrvelDRR, DR open fail: No such file or directory");
        };
        EXPECT_EQ(looks(), 1);
        mClock.advanceNanos(millis * 1'000'000 - 1);
        EXPECT_EQ(looks(), 1);
        mClock.advanceNanos(1);
        EXPECT_EQ(looks(), 2);
        EXPECT_EQ(looks(), 2);
    }
}

// ---- the configuration --------------------------------------------------------------------------------

// Catches bad input that changes the target, goes unsaid or stops the game; a line of another package that is obeyed
// or complained about; fields read in another way than a stream reads them.
TEST_F(DynamicResolution, FileSetsTheTargetOrTheLogSaysWhyNot) {
    const std::string small = "game 1280 720";
    const auto padded = [&](size_t length) { return small + std::string(length - small.size(), ' '); };
    const char binary[] = "\x7f\1\2\0 \xff\xfe 720";
    const auto check = [&](const std::string& text, const std::vector<std::string>& errors, TEX_SIZE expected) {
        SCOPED_TRACE(text.substr(0, 50));
        start();
        ask(text);
        LogCapture log;
        swap();
        EXPECT_EQ(applied(), expected);
        EXPECT_EQ(log.texts(ANDROID_LOG_ERROR), errors);
        ask("game 960 540"); // and after anything at all a good line is taken
        swap();
        EXPECT_EQ(applied(), kTiny);
    };
    for (const std::string& good :
         {"com.example.game 1280 720\n"s, "e.ga 1280 720"s, "\t game\v1280 \f 720\r\n"s, "game 1280 720abc def"s,
          "game +1280+720"s, small + "\ngame 1000 720", padded(4096) + "\nx", padded(4096)}) {
        check(good, {}, kSmall);
    }
    check("com.other 1 1", {}, kBase);
    const char open[] = "OrvelDRR, DR open fail: ";
    const char parse[] = "OrvelDRR, DR parse error: ";
    check("", {open + "No data available"s}, kBase);
    for (const std::string& invalid : {"\ngame 1280 720"s, "game 1280"s, "game 1280abc 720"s, "game x 720"s,
                                       "game +-1280 720"s, std::string(binary, sizeof binary)}) {
        check(invalid, {parse + "Invalid argument"s}, kBase);
    }
    for (const char* large : {"game 2147483648 720", "game 1280 -99999999999999999999"}) {
        check(large, {parse + "Numerical result out of range"s}, kBase);
    }
    // What follows the third field is ignored, however much it is; a field must lie within what is read.
    check(padded(4097) + "\n", {}, kSmall);
    for (const std::string& endless : {std::string(5000, ' ') + small, std::string(1 << 20, 'x')}) {
        check(endless, {parse + "Message too long"s}, kBase);
    }
    for (const char* unavailable : {"game 0 0", "game -1280 -720", "game -1 -1", "game 1920 1080"}) {
        check(unavailable, {"OrvelDRR, target size not available"}, kBase);
    }
}

// Catches properties that are obeyed without debugging, that need an available size, or that only count after a
// readable file; and a debug form of an error line that is lost.
TEST_F(DynamicResolution, PropertiesForceTheTargetWhileDebugging) {
    property_set("vendor.orvel.force_dr_target_width", "777");
    start("com.example.game", true);
    switchTo(kSmall);
    EXPECT_EQ(applied(), kSmall); // without a height the width counts for nothing
    property_set("vendor.orvel.force_dr_target_height", "555");
    start();
    ask("game 1 1");
    swap();
    EXPECT_EQ(applied(), kBase); // not without debugging
    std::filesystem::remove(std::getenv("ORVEL_ROOT") + "/data/system/mcd/dr"s);
    start("com.example.game", true);
    LogCapture log;
    swap();
    EXPECT_EQ(applied(), (TEX_SIZE{777, 555})); // whether there is a file or not
    switchTo({1, 2});
    EXPECT_TRUE(log.has(ANDROID_LOG_DEBUG, "OrvelDRR, use force_target_resolution: 777x555"));
    EXPECT_TRUE(log.has(ANDROID_LOG_ERROR, "OrvelDRR, target size not available, 1x2"));
}
