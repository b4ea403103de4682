#include "settings/OrvelSettings.h"

#include "FakeJni.h"
#include "FakeRavelo.h"
#include "LogCapture.h"
#include "TestRoot.h"
#include "settings/GameInfoMonitor.h"
#include "settings/OrvelPrefs.h"

#include <gmock/gmock.h>

using namespace android;
using android::orvel::OrvelSettings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kGame[] = "com.miHoYo.Yuanshen";
constexpr char kQuery[] = "13 0 com.velmor.ravelo.IRaveloInterface ";

// Catches a package that is missing from the table, and names that are compared by prefix, ignoring case, or with
// their arguments; a query or a line in the log for a process that is none of our business; a monitor that is not told.
TEST(Settings, IdentifyByTheExactProcessName) {
    const std::pair<std::string, OrvelApplicationType> processes[] = {
        {"com.tencent.tmgp.sgamece", APP_TYPE_SGAME},
        {"com.tencent.tmgp.pubgmhd", APP_TYPE_PUBG},
        {"com.miHoYo.Yuanshen", APP_TYPE_YUANSHEN},
        {"com.miHoYo.hkrpg", APP_TYPE_HKRPG},
        {"com.netease.harrypotter.vo", APP_TYPE_HP},
        {"com.tencent.qqlive", APP_TYPE_QQLIVE},
        {"com.ss.android.ugc.aweme", APP_TYPE_AWEME},
        {std::string("tv.danmaku.bili\0--option\0", 25), APP_TYPE_BILI},
        {"com.miHoYo.hkrpg:push", APP_TYPE_NONE},
        {"com.mihoyo.hkrpg", APP_TYPE_NONE},
        {"", APP_TYPE_NONE},
    };
    const TestRoot root;
    OrvelSettings& settings = OrvelSettings::getInstance();
    for (const auto& [cmdline, type] : processes) {
        const std::string name = cmdline.c_str();
        const auto service = FakeRavelo::offer();
        LogCapture log;
        root.bePackage(cmdline);
        settings.mApplicationType = APP_TYPE_NONE;
        settings.init();
        EXPECT_EQ(settings.mApplicationType, type) << name;
        if (type == APP_TYPE_NONE) {
            EXPECT_THAT(log.lines(), IsEmpty());
            EXPECT_THAT(service->calls, IsEmpty());
        } else {
            EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "pid: " + std::to_string(getpid()) + ", cmdline: " + name));
            EXPECT_THAT(service->calls, ElementsAre(kQuery + name));
            GameInfoMonitor::getInstance().parseGameSceneId(name, static_cast<int>(type)); // it knows the name too
            EXPECT_EQ(settings.getSceneId(), static_cast<int>(type));
        }
        delete std::exchange(settings.mPrefs, nullptr);
    }
}

// Catches a process without a readable name that is asked about, or that takes a type.
TEST(Settings, UnreadableProcessName) {
    const TestRoot root; // without proc/
    const auto service = FakeRavelo::offer();
    LogCapture log;
    OrvelSettings::getInstance().init();
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_ERROR, "Failed to read the process name"}));
    EXPECT_THAT(service->calls, IsEmpty());
}

// Catches a failed call that leaves preferences behind, an empty answer that leaves none, and lost or wrong log lines.
TEST(Settings, ServiceFaults) {
    struct Fault {
        void (*arrange)(FakeRavelo& service);
        int status;
        bool prefs;
        bool enabled;
        std::vector<LogLine> log; // warnings and errors
    };
    const LogLine noService{ANDROID_LOG_WARN, "remote service not exist."};
    const LogLine callFailed{ANDROID_LOG_ERROR, "orvel:call remote service failed."};
    const LogLine died{ANDROID_LOG_ERROR, "remote service died!"};
    const LogLine noObject{ANDROID_LOG_ERROR, "configuration has no object \"configs\": 3"};
    const Fault faults[] = {
        {[](FakeRavelo&) {}, 0, true, true, {}},
        {[](FakeRavelo&) { FakeRavelo::withdraw(); }, 2, false, false, {noService}},
        {[](FakeRavelo& service) { service.status = DEAD_OBJECT; }, 3, false, false, {callFailed}},
        {[](FakeRavelo& service) {
             service.duringCall = [&service] { // only the caller's own reference keeps the binder now
                 FakeRavelo::withdraw();
                 service.die();
                 service.status = DEAD_OBJECT;
             };
         },
         3,
         false,
         false,
         {died, callFailed}},
        {[](FakeRavelo& service) { service.exception = -1; }, 4, false, false, {}},
        {[](FakeRavelo& service) { service.answer = ""; }, 5, true, false, {}},
        {[](FakeRavelo& service) { service.answer = "3"; }, 0, true, true, {noObject}},
    };
    OrvelSettings& settings = OrvelSettings::getInstance();
    settings.mApplicationType = APP_TYPE_YUANSHEN;
    for (const Fault& fault : faults) {
        FakeRavelo::offer(R"({"configs":{"tex_size":"1920x1080"}})");
        fault.arrange(*FakeRavelo::offered());
        LogCapture log;
        EXPECT_EQ(settings.initOrvelPrefs(), fault.status);
        EXPECT_EQ(settings.mPrefs != nullptr, fault.prefs);
        EXPECT_EQ(settings.mPrefs && settings.mPrefs->mEnabled, fault.enabled);
        std::vector<LogLine> problems = log.lines();
        std::erase_if(problems, [](const LogLine& line) { return line.priority < ANDROID_LOG_WARN; });
        EXPECT_EQ(problems, fault.log);
        delete std::exchange(settings.mPrefs, nullptr);
    }
}

// Catches a recipient that nobody but the binder knows, which is gone before the notice comes, a binder that is kept
// after the notice, and a configuration that is dropped with it.
TEST(Settings, DeathNoticeDropsTheBinderOnly) {
    const TestRoot root;
    root.bePackage(kGame);
    auto service = FakeRavelo::offer(R"({"configs":{}})");
    OrvelSettings::getInstance().init();
    LogCapture log;
    FakeRavelo::withdraw();
    EXPECT_EQ(service->die(), 1);
    EXPECT_TRUE(log.has(ANDROID_LOG_ERROR, "remote service died!"));
    EXPECT_TRUE(OrvelSettings::getInstance().mPrefs->mEnabled);
    const wp<FakeRavelo> weak = service;
    service.clear();
    EXPECT_EQ(weak.promote(), nullptr);
}

// Catches a framework name that is not what is asked about, an empty one included, and one that is asked for twice.
TEST(FrameworkName, ReplacesTheProcessName) {
    for (const char* name : {"", "com.other"}) {
        const TestRoot root;
        root.bePackage(kGame);
        FakeJni jni(name);
        const auto service = FakeRavelo::offer();
        OrvelSettings& settings = OrvelSettings::getInstance();
        settings.mPackageNameResolved = false;
        settings.init();
        EXPECT_EQ(service->calls.back(), std::string(kQuery) + name);
        EXPECT_STREQ(settings.mPackageName.string(), name);
        EXPECT_TRUE(settings.mPackageNameResolved);
        delete std::exchange(settings.mPrefs, nullptr);
    }
    FakeJni jni("com.third");
    EXPECT_STREQ(orvel::getCurrentPackageName().string(), "com.other");
    EXPECT_EQ(jni.calls, 0);
}

// Catches a Java exception that is left for the game to stumble over, a lookup that counts as done when it failed, and
// a wrong message.
TEST(FrameworkName, FailureKeepsTheProcessName) {
    const TestRoot root;
    root.bePackage(kGame);
    OrvelSettings& settings = OrvelSettings::getInstance();
    settings.init();
    LogCapture log;
    const std::pair<FakeJni::Step, const char*> failures[] = {
        {FakeJni::FIND_CLASS, "find ActivityThread class failed"},
        {FakeJni::GLOBAL_REF, "new ActivityThread ref failed"},
        {FakeJni::FIND_METHOD, "find currentPackageName method failed"},
    };
    for (const auto& [step, message] : failures) {
        FakeJni jni("com.other", step);
        const auto service = FakeRavelo::offer();
        log.clear();
        settings.initOrvelPrefs();
        EXPECT_THAT(log.texts(ANDROID_LOG_ERROR), ElementsAre(message));
        EXPECT_FALSE(jni.exceptionPending) << message;
        EXPECT_FALSE(settings.mPackageNameResolved);
        EXPECT_EQ(service->calls.back(), std::string(kQuery) + kGame);
        delete std::exchange(settings.mPrefs, nullptr);
    }
    FakeJni jni("com.other", FakeJni::CALL);
    ASSERT_TRUE(orvel::initActivityThreadClass());
    EXPECT_STREQ(orvel::getCurrentPackageName().string(), "");
    EXPECT_FALSE(jni.exceptionPending);
}

} // namespace
