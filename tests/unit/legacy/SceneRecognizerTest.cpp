// The recognisers as the game feeds them: through the hooks. What they found shows in what the thread would send.
#include "legacy/SceneRecognizer.h"

#include "DesktopBinder.h"
#include "FakeClock.h"
#include "LogCapture.h"
#include "RecordingDriver.h"
#include "base/OrvelClock.h"
#include "legacy/HkrpgScenes.h"
#include "loader/OrvelLegacyHooks.h"
#include "next/OrvelNext.h"
#include "settings/FakeRavelo.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <sstream>
#include <sys/prctl.h>
#include <thread>

using namespace android;
using android::orvel::next::GlTable;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** Notes what it would send. */
class NotingRecognizer : public SceneRecognizer {
public:
    int32_t sendSceneIdToRavelo(int32_t sceneId) override {
        const std::lock_guard lock(mMutex);
        mSent.push_back(sceneId);
        prctl(PR_GET_NAME, mThreadName);
        return SEND_DONE;
    }
    std::vector<int32_t> sent() {
        const std::lock_guard lock(mMutex);
        return mSent;
    }
    /** @return what the thread sends next time */
    std::vector<int32_t> tick() {
        mSent.clear();
        EXPECT_TRUE(threadLoop());
        return mSent;
    }
    char mThreadName[32] = {};

private:
    std::mutex mMutex;
    std::vector<int32_t> mSent;
};

bool* const kSwitches[] = {&mEnableYSSceneRecognize, &mEnableYSTransferRecognize, &mEnableYSLaunchRecognize,
                           &mEnableHPTransferRecognize, &mEnableHkrpgSceneRecognize};

class RecognisedGame {
public:
    RecognisedGame() {
        installVoHooks(mDriver->connection());
        mDriver->answer<&GlTable::glGetTexLevelParameteriv>(
            [this](GLenum target, GLint level, GLenum pname, GLint* value) {
                EXPECT_EQ(target, GLenum(GL_TEXTURE_2D));
                EXPECT_EQ(level, 0);
                *value = pname == GL_TEXTURE_WIDTH ? mBoundWidth : mBoundHeight;
            });
        mSceneRecognizer = mRecognizer;
        for (bool* recogniser : kSwitches) {
            *recogniser = true;
        }
    }
    ~RecognisedGame() { mSceneRecognizer = nullptr; }

    /**
     * Plays calls of the game. A number is a draw of so many elements, one with a "v" a draw with a base vertex, a size
     * the bind of a texture that has it; "clear", "invalidate".
     */
    void play(const std::string& steps) {
        std::istringstream words(steps);
        for (std::string word; words >> word;) {
            int width = 0, height = 0;
            if (word == "clear") {
                mGame.glClear(GL_DEPTH_BUFFER_BIT);
            } else if (word == "invalidate") {
                mGame.glInvalidateFramebuffer(GL_FRAMEBUFFER, 0, nullptr);
            } else if (std::sscanf(word.c_str(), "%dx%d", &width, &height) == 2) {
                mGame.glBindTexture(GL_TEXTURE_2D, 1);
                mBoundWidth = width;
                mBoundHeight = height;
            } else if (word[0] == 'v') {
                mGame.glDrawElementsBaseVertex(GL_TRIANGLES, std::stoi(word.substr(1)), GL_UNSIGNED_SHORT, nullptr, 0);
            } else {
                mGame.glDrawElements(GL_TRIANGLES, std::stoi(word), GL_UNSIGNED_SHORT, nullptr);
            }
        }
    }

    FakeClock mClock;
    LogCapture mLog;
    std::unique_ptr<RecordingDriver> mDriver = RecordingDriver::installed();
    GlTable& mGame = mDriver->gles2().gl;
    platform_impl_t& mPlatform = mDriver->connection()->platform;
    sp<NotingRecognizer> mRecognizer = new NotingRecognizer;

private:
    int mBoundWidth = 0;
    int mBoundHeight = 0;
};

const std::string kBossTextures = "1024x1024 4x4 1x1 ";
const std::string kTransfer = "clear 6 108 33 6 6 6 420 ";
const std::string kLaunch = "clear 6 60 6 6 6 6 6 6 6 6 6 6 6 6 6 6 6 420 ";

struct Scene {
    std::string steps;
    int32_t id;
};

void PrintTo(const Scene& scene, std::ostream* out) { *out << '"' << scene.steps << "\" " << scene.id; }

class Scenes : public testing::TestWithParam<Scene> {};

} // namespace

// Catches a pattern that is matched wrongly, starts unarmed, is broken by what must not break it or survives what must,
// and a history that is a bind or a draw early.
TEST_P(Scenes, AreRecognised) {
    RecognisedGame game;
    game.play(GetParam().steps);
    EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(GetParam().id));
}

INSTANTIATE_TEST_SUITE_P(
    Boss, Scenes,
    testing::Values(Scene{kBossTextures + "162 54 54 7", 1006}, Scene{kBossTextures + "162 54 12 54 7", 1006},
                    Scene{kBossTextures + "162 54 13 54 7", 1005}, Scene{kBossTextures + "163 54 12 54 7", 1005},
                    Scene{kBossTextures + "162 54 12 55 7", 1005}, Scene{"1024x512 4x4 1x1 162 54 54 7", 1005},
                    Scene{"1024x1024 4x8 1x1 162 54 54 7", 1005},
                    Scene{kBossTextures + "162 54 54", 1005}, // the draw under way is not in the history
                    Scene{kBossTextures + "v162 v54 v54 7", 1005},
                    Scene{"1024x1024 4x4 162 54 54 7", 1005}, // the last bind is not in the history
                    Scene{"1024x1024 4x4 1x1 1x1 162 54 54 7", 1005}, Scene{"4x4 1024x1024 1x1 162 54 54 7", 1005}));

INSTANTIATE_TEST_SUITE_P(Transfer, Scenes,
                         testing::Values(Scene{kTransfer, 1007}, Scene{"clear 6 108 420 6 6 6 420", 1007},
                                         Scene{"clear v6 v108 v33 v6 v6 v6 v420", 1007},
                                         Scene{"6 108 33 6 6 6 420", 1005},
                                         Scene{"clear clear 6 108 clear 33 6 6 clear 6 420", 1007},
                                         Scene{"clear 6 108 33 -6 6 6 6 420", 1007},
                                         Scene{"clear 6 6 108 33 6 6 6 420", 1005},
                                         Scene{"clear 6 108 33 6 6 6 421", 1005}));

INSTANTIATE_TEST_SUITE_P(Launch, Scenes,
                         testing::Values(Scene{kLaunch, 1008},
                                         Scene{"clear v6 v60 6 6 6 6 6 6 6 6 6 clear 6 6 6 6 6 6 420", 1008},
                                         Scene{"clear 6 60 5 6 6 6 6 6 6 6 6 6 6 6 6 6 6 420", 1005}, // no wildcard
                                         Scene{"clear 6 60 6 6 6 6 6 6 6 6 6 6 6 6 6 6 420", 1005}));

INSTANTIATE_TEST_SUITE_P(HarryPotter, Scenes,
                         testing::Values(Scene{"6 6 6 12 99 invalidate", 1007},
                                         Scene{"7 v6 v6 v6 v12 v99 invalidate", 1007}, Scene{"6 6 6 12 99", 1005},
                                         Scene{"9 6 6 6 12 invalidate", 1005}, // the latest do not count
                                         Scene{"6 6 6 12 99 99 invalidate", 1005}));

INSTANTIATE_TEST_SUITE_P(Priorities, Scenes,
                         testing::Values(Scene{kTransfer + kLaunch + kBossTextures + "162 54 54 7", 1006},
                                         Scene{kTransfer + kLaunch, 1007}));

// Catches a recogniser that works without its own switch or needs another's.
TEST(SceneSwitches, WorkAlone) {
    const std::pair<bool*, Scene> kRecognised[] = {
        {&mEnableYSSceneRecognize, {kBossTextures + "162 54 54 7", 1006}},
        {&mEnableYSTransferRecognize, {kTransfer, 1007}},
        {&mEnableYSLaunchRecognize, {kLaunch, 1008}},
        {&mEnableHPTransferRecognize, {"6 6 6 12 99 invalidate", 1007}},
    };
    for (const auto& [own, scene] : kRecognised) {
        for (const bool alone : {true, false}) {
            RecognisedGame game;
            for (bool* recogniser : kSwitches) {
                *recogniser = (recogniser == own) == alone;
            }
            game.play(scene.steps);
            EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(alone ? scene.id : 1005)) << scene.steps << alone;
            mRemainSendTimes = 0;
        }
    }
}

// Catches a scene that is sent more or less than twice in a row, counts that outlive a period, and one that sleeps
// wrongly.
TEST(SceneReport, SendsEachNewSceneTwice) {
    RecognisedGame game;
    EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(1005));
    EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(1005));
    EXPECT_THAT(game.mRecognizer->tick(), IsEmpty());
    game.play(kTransfer + kTransfer + "6 108 33 6 6 6 420"); // the last is not armed
    EXPECT_EQ(game.mLog.texts(ANDROID_LOG_INFO), (std::vector<std::string>{"checkTransferPattern transferring: 0!",
                                                                           "checkTransferPattern transferring: 1!"}));
    const int64_t before = orvel::monotonicNanos();
    EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(1007));
    EXPECT_EQ(orvel::monotonicNanos() - before, 2'000'000'000);
    EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(1005)) << "an event lasts for one period";
    for (const auto& sent : {std::vector{1008}, {1008}, {}}) {
        game.play(kLaunch);
        EXPECT_EQ(game.mRecognizer->tick(), sent);
    }
    EXPECT_TRUE(game.mLog.has(ANDROID_LOG_INFO, "checkLaunchPattern launching: 0!"));
    game.play("6 6 6 12 99 invalidate");
    EXPECT_TRUE(game.mLog.has(ANDROID_LOG_INFO, "checkTransferPatternHP transferring: 0!"));
}

// Catches labels that are compared loosely, a scene taken from the wrong bind or kept over a frame, and a frame without
// the avatar's icon that still has a scene.
TEST(HkrpgScenes, FollowTheMinimapOfEachFrame) {
    RecognisedGame game;
    const auto label = [&](GLuint name, const char* text) { game.mGame.glLabelObjectEXT(GL_TEXTURE, name, 0, text); };
    /** Binds textures and ends the frame. @return the scenes that were reported, and what is then sent */
    const auto frame = [&](std::initializer_list<GLuint> textures) {
        game.mLog.clear();
        for (const GLuint texture : textures) {
            game.mGame.glBindTexture(GL_TEXTURE_2D, texture);
        }
        game.mPlatform.eglSwapBuffers(nullptr, nullptr);
        const auto reported = game.mLog.texts(ANDROID_LOG_INFO);
        std::string text = reported.empty() ? "" : reported.front() + ":";
        mRemainSendTimes = 0; // of ordinary play, which is then not sent
        for (const int32_t id : game.mRecognizer->tick()) {
            text += " " + std::to_string(id);
        }
        return text;
    };
    game.mRecognizer->tick();
    label(5, "Minimap_Chap02_ADV_City_BackGround");
    label(6, "Minimap_Chap02_ADV_X2_Background");
    label(7, "Minimap_Chap02_MAZ_X21_BackGround");
    label(3, "Minimap_Chap01_ADV_Area_Square_01_BackGround");
    label(4, "Minimap_Chap02_ADV_X2_BackGround"); // not that label
    EXPECT_EQ(frame({5, 0}), "") << "no icon yet";
    label(9, "AvatarIcon");
    EXPECT_EQ(frame({9}), "");
    EXPECT_EQ(frame({5, 9}), "recognizeHkrpgScene 1: 1009");
    EXPECT_EQ(frame({5, 9}), "") << "unchanged";
    EXPECT_EQ(frame({9, 6, 5}), "recognizeHkrpgScene 2: 1010") << "the first minimap of the frame";
    EXPECT_EQ(frame({7}), "recognizeHkrpgScene 0: 1005") << "without the icon";
    EXPECT_EQ(frame({7}), "");
    EXPECT_EQ(frame({7, 9}), "recognizeHkrpgScene 3: 1011");
    EXPECT_EQ(frame({4, 9}), "recognizeHkrpgScene 0: 1005") << "the icon without a minimap";
    label(8, "Minimap_Chap01_ADV_Area_Square_01_BackGround"); // replaces texture 3
    EXPECT_EQ(frame({3, 9}), "");
    EXPECT_EQ(frame({8, 9}), "recognizeHkrpgScene 4: 1012");
    mEnableHkrpgSceneRecognize = false;
    EXPECT_EQ(frame({5, 9}), "") << "switched off";
    mEnableHkrpgSceneRecognize = true;
    EXPECT_EQ(frame({9}), "recognizeHkrpgScene 0: 1005") << "what was bound meanwhile does not count";
}

// Catches an Hkrpg scene that waits for a change, takes the turn of another, or clears what was counted.
TEST(SceneReport, SendsHkrpgScenesWheneverNothingElseIsOn) {
    RecognisedGame game;
    for (const int32_t scene : {4, -1}) { // a number without an id repeats the last
        game.mRecognizer->recognizeHkrpgScene(scene);
        const int64_t before = orvel::monotonicNanos();
        EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(1012)) << scene;
        EXPECT_EQ(orvel::monotonicNanos() - before, 2'000'000'000);
    }
    game.mRecognizer->recognizeHkrpgScene(1);
    game.play(kTransfer);
    EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(1007));
    EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(1009));
    EXPECT_THAT(game.mRecognizer->tick(), ElementsAre(1005));
}

namespace {

/** Notes a scene report as the service reads it. */
class SceneService : public FakeRavelo {
public:
    status_t transact(uint32_t code, const Parcel& data, Parcel*, uint32_t flags) override {
        data.setDataPosition(0);
        const std::string token = String8(data.readString16()).string();
        const int32_t number = data.readInt32();
        const std::string text = String8(data.readString16()).string();
        calls.push_back(std::to_string(code) + " " + std::to_string(flags) + " " + token + " " +
                        std::to_string(number) + " " + text);
        return status;
    }
};

} // namespace

// Catches a report that the service cannot read, a failure that goes unlogged or is told by the wrong number.
TEST(SceneReport, GoesToTheTuningService) {
    const LogCapture log;
    const sp<SceneRecognizer> recognizer = new SceneRecognizer;
    EXPECT_EQ(recognizer->sendSceneIdToRavelo(1005), 2);
    const sp<SceneService> service = new SceneService;
    desktop::offerService(String16("velmor.ravelo"), service);
    EXPECT_EQ(recognizer->sendSceneIdToRavelo(1006), 4);
    service->status = DEAD_OBJECT;
    EXPECT_EQ(recognizer->sendSceneIdToRavelo(1007), 3);
    FakeRavelo::withdraw();
    const std::string call = "3 0 com.velmor.ravelo.IRaveloInterface 1 ";
    EXPECT_THAT(service->calls, ElementsAre(call + R"({"sceneId":1006})", call + R"({"sceneId":1007})"));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_DEBUG, "sendSceneIdToRavelo, sceneId: 1005"},
                                         LogLine{ANDROID_LOG_WARN, "remote service not exist."},
                                         LogLine{ANDROID_LOG_DEBUG, "sendSceneIdToRavelo, sceneId: 1006"},
                                         LogLine{ANDROID_LOG_DEBUG, "sendSceneIdToRavelo, sceneId: 1007"},
                                         LogLine{ANDROID_LOG_ERROR, "orvel:call remote service failed."}));
}

// Catches fields that the two threads race for (under the thread sanitizer), a thread that does not start, does not end
// or has no name. The fake clock lets its sleeps pass at once, so it ticks all the time.
TEST(SceneThread, TicksWhileTheGameDraws) {
    RecognisedGame game;
    game.mGame.glLabelObjectEXT(GL_TEXTURE, 5, 0, "Minimap_Chap02_ADV_City_BackGround");
    game.mGame.glLabelObjectEXT(GL_TEXTURE, 9, 0, "AvatarIcon");
    game.mRecognizer->startThread();
    const auto saw = [&](int32_t id) {
        const auto sent = game.mRecognizer->sent();
        return std::find(sent.begin(), sent.end(), id) != sent.end();
    };
    while (!saw(1006) || !saw(1007) || !saw(1008) || !saw(1009)) {
        game.play(kTransfer + kLaunch + "6 6 6 12 99 invalidate");
        game.play(kBossTextures + "162 54 54 7 2x2 2x2");
        game.mGame.glBindTexture(GL_TEXTURE_2D, 5);
        game.mGame.glBindTexture(GL_TEXTURE_2D, 9);
        game.mPlatform.eglSwapBuffers(nullptr, nullptr);
        game.mPlatform.eglSwapBuffers(nullptr, nullptr);
        game.mDriver->forget();
        game.play(kLaunch);
        std::this_thread::yield();
    }
    game.mRecognizer->stopThread();
    const auto sent = game.mRecognizer->sent();
    EXPECT_THAT(sent, Each(AnyOf(1005, 1006, 1007, 1008, 1009)));
    EXPECT_STREQ(game.mRecognizer->mThreadName, "RecognizeBossTh"); // as much as the system keeps
    EXPECT_TRUE(game.mLog.has(ANDROID_LOG_INFO, "RecognizeBossThread startThread"));
    EXPECT_TRUE(game.mLog.has(ANDROID_LOG_INFO, "RecognizeBossThread stopThread"));
    EXPECT_FALSE(game.mRecognizer->isRunning());
}
