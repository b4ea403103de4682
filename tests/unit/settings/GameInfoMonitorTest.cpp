#include "settings/GameInfoMonitor.h"

#include "LogCapture.h"
#include "TestRoot.h"
#include "settings/OrvelSettings.h"

#include <cutils/properties.h>
#include <gmock/gmock.h>

#include <chrono>
#include <thread>

using android::GameInfo;
using android::GameInfoMonitor;
using android::orvel::OrvelSettings;

namespace {

constexpr char kPath[] = "/data/system/mcd/gameInfo";

std::string describe(const GameInfo& info) {
    const OrvelSettings& settings = OrvelSettings::getInstance(); // the way that features read the record
    std::string text;
    for (const int value : {settings.getImageQuality(), int{info.mPicKey54}, int{info.mPicKey10}, settings.getSceneId(),
                            int{settings.getSmallWindowSig()}, settings.getVrsLevel(), settings.getFilterType(),
                            settings.getLutStrength(), settings.getDarkEdge()}) {
        text += std::to_string(value) + " ";
    }
    return text;
}

constexpr char kInitial[] = "0 0 -1 0 0 0 0 100 0 ";

struct Content {
    std::string text;
    const char* expected;   // quality, picture keys 54 and 10, scene, small window, shading level, filter triple
    const char* error = ""; // how the one error line begins, if there is one
};

const Content kContents[] = {
    {"", kInitial},
    {"1 my.game 1006abc", "0 0 -1 1006 0 0 0 100 0 "},
    {"1 my.game 5\n1 other.game 6\n1 my.game.two 7\n", "0 0 -1 5 0 0 0 100 0 "},
    {"2 other.game 8 3\n2 x 54 4\n2 x 10 5\n2 x 9 6\n", "3 4 5 0 0 0 0 100 0 "},
    {"3 other.game 2\n", "0 0 -1 0 0 2 0 100 0 "},
    {"4 my.game 1\n4 other.game 0\n", "0 0 -1 0 1 0 0 100 0 "},
    {"4 my.game 1\n4 my.game 2\n", kInitial},
    {"5 my.game 2 60 1 rest\n5 other.game 3 4 5\n", "0 0 -1 0 0 0 2 60 1 "},
    {"9 my.game 1\n1 my.game 5\n", "0 0 -1 5 0 0 0 100 0 ", "unknown game info type: 9"},
    {"1 my.game 5\n\n1 my.game 6\n", "0 0 -1 5 0 0 0 100 0 ", "Orvel parse game infoType error: "},
    {"5 my.game 2 strong 1\n1 my.game 5\n", kInitial, "parse filter config error: "},
    {"1 my.game\n3 x 2\n", kInitial, "parse game sceneId error: "},
    {"2 my.game 8 99999999999\n3 x 2\n", kInitial, "parse game pictureInfo error: "},
    {"3 my.game x\n", kInitial, "parse game vrsLevel error: "},
    {"4 my.game\n", kInitial, "parse commonVrs error: "},
    {std::string("\x7f\0\xff\n1 my.game 5\n", 16), kInitial, "Orvel parse game infoType error: "},
    {std::string(1 << 20, '7'), kInitial, "Orvel parse game infoType error: "},
    {"1 " + std::string(1 << 20, 'x') + " 5\n3 x 2", "0 0 -1 0 0 2 0 100 0 "},
};

// Catches a line that sets a field that is not its own, packages compared where they must not be or ignored where they
// must, a malformed line that is half applied, and reading that goes on after one or stops at an unknown type.
TEST(GameInfoMonitor, AppliesTheFileLineByLine) {
    const TestRoot root;
    GameInfoMonitor& monitor = GameInfoMonitor::getInstance();
    monitor.setPackageName(std::string("my.game\0--option\0", 17));
    for (const Content& content : kContents) {
        SCOPED_TRACE(content.text.substr(0, 60));
        root.write(kPath, content.text);
        LogCapture log;
        monitor.updateGameInfo();
        EXPECT_EQ(describe(monitor.getGameInfo()), content.expected);
        const std::vector<LogLine> lines = log.lines(); // no verbose ones either: the property is not set
        EXPECT_EQ(lines.size(), *content.error ? 1u : 0u) << testing::PrintToString(lines);
        EXPECT_THAT(lines.empty() ? "" : lines[0].text, testing::StartsWith(content.error));
        root.write(kPath, "1 my.game 0\n2 x 8 0\n2 x 54 0\n2 x 10 -1\n3 x 0\n4 my.game 0\n5 my.game 0 100 0\n");
        monitor.updateGameInfo();
        ASSERT_EQ(describe(monitor.getGameInfo()), kInitial);
    }
}

// Catches an empty name, the state before the process is identified, that matches lines, and a missing file that
// changes the record or passes in silence.
TEST(GameInfoMonitor, WithoutNameOrFile) {
    const TestRoot root;
    LogCapture log;
    GameInfoMonitor& monitor = GameInfoMonitor::getInstance();
    EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "Orvel GameInfoMonitor construct"));
    monitor.parseGameSceneId("", 5);
    monitor.parseFilterConfig("", 1, 2, 3);
    monitor.updateGameInfo();
    EXPECT_EQ(describe(monitor.getGameInfo()), kInitial);
    EXPECT_TRUE(log.has(ANDROID_LOG_ERROR, "Orvel open scendId path error: No such file or directory"));
}

int monitorThreads() {
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm") >> std::ws, name);
        count += name == "GIM_thread";
    }
    return count;
}

bool waitForScene(int scene) {
    for (int i = 0; i < 2000; ++i) {
        if (OrvelSettings::getInstance().getSceneId() == scene) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

// Catches a start that counts as done when it failed, that reads the file at once or makes a second thread, and a
// watch that misses a writer, ends after the first, or wakes for anything but a closed write.
TEST(GameInfoMonitor, FollowsTheFile) {
    const TestRoot root;
    property_set("vendor.orvel.debug", "true");
    GameInfoMonitor& monitor = GameInfoMonitor::getInstance();
    LogCapture log;
    monitor.start();
    EXPECT_TRUE(log.has(ANDROID_LOG_ERROR, "Orvel fail to use INO for game info: No such file or directory"));
    EXPECT_EQ(monitorThreads(), 0);

    root.write(kPath, "3 any.game 7\n"); // applies to every package, were it read
    monitor.start();
    monitor.start();
    EXPECT_EQ(monitorThreads(), 1);
    monitor.setPackageName("my.game"); // as at start-up: the name comes after the start
    EXPECT_EQ(OrvelSettings::getInstance().getVrsLevel(), 0);
    root.write(kPath, "1 my.game 2\n");
    EXPECT_TRUE(waitForScene(2));
    root.write(kPath, "1 my.game 3\n");
    EXPECT_TRUE(waitForScene(3));
    {
        std::ofstream writer(getenv("ORVEL_ROOT") + std::string(kPath));
        writer << "1 my.game 4\n" << std::flush;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(OrvelSettings::getInstance().getSceneId(), 3); // a file half written is not read
    }
    EXPECT_TRUE(waitForScene(4));
    const std::vector<std::string> seen = log.texts(ANDROID_LOG_INFO);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "gameInfo changed: 1 my.game 2"), 1);
}

} // namespace
