// Recognises scenes of a game from what it draws and reports them to the tuning service. The scenes that are told apart
// by labels: HkrpgScenes.h.
#pragma once

#include "base/Relaxed.h"
#include "legacy/DrawPatterns.h"
#include "settings/orvel_modify_params.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utils/Thread.h>

namespace android {

/**
 * How often the scene that was chosen last is still to be sent; the reporting thread's alone. One for the process, in
 * spite of the m: it is known by this name.
 */
extern int32_t mRemainSendTimes;

/**
 * Counts characteristic sequences of draws, texture sizes and labels on the game's rendering thread; a thread of its
 * own reads and clears the counts every 2 s and reports what they say. What every draw calls is final and inline: the
 * hooks then need no call for it.
 */
class SceneRecognizer : public Thread {
public:
    /** Scenes by the numbers that the service knows. */
    enum SceneId : int32_t {
        SCENE_ORDINARY = 1005,
        SCENE_BOSS = 1006,
        SCENE_TRANSFER = 1007,
        SCENE_LAUNCH = 1008,
        SCENE_HKRPG_CITY = 1009,
        SCENE_HKRPG_X2 = 1010,
        SCENE_HKRPG_X21 = 1011,
        SCENE_HKRPG_SQUARE = 1012,
    };

    /** What sendSceneIdToRavelo() came to. */
    enum SendStatus : int32_t {
        SEND_NO_SERVICE = 2,
        SEND_CALL_FAILED = 3,
        SEND_DONE = 4,
    };

    SceneRecognizer() : Thread(/*canCallJava=*/false) {}

    /** The size, in texels, of the texture that a bind is about to replace. */
    virtual void updateTexSizeArr(int32_t width, int32_t height);
    /** The elements of a draw. */
    virtual void updateEleCountArr(const int& count) final;
    /** Counts a boss fight when the draws and binds so far, without the draw under way, are those of one. */
    virtual void checkBossPattern() final;
    /** Follows the draws of a map transfer. @param count elements of a draw; 0 a clear, which starts a run */
    virtual void checkTransferPattern(const int& count) final;
    /** Follows the draws of the game's launch, as above. */
    virtual void checkLaunchPattern(const int& count) final;
    /** Notes one of HKRPG_SCENE to be reported; other numbers report the noted one again. */
    virtual void recognizeHkrpgScene(int32_t scene);
    /** Follows the draws of Harry Potter's transfer. @param count elements of a draw; 0 an invalidation, its end */
    virtual void checkTransferPatternHP(const int& count) final;

    virtual void startThread();
    /** Waits for the thread, which may sleep for 2 s. */
    virtual void stopThread();
    /** @return a SendStatus */
    virtual int32_t sendSceneIdToRavelo(int32_t sceneId);

    /** One look at the counts, then a sleep. @return true: there is a next one */
    bool threadLoop() override;

private:
    status_t readyToRun() override;

    // Counts and ids cross from the rendering to the reporting thread, and are read and written in two steps. A count
    // that lands between the thread's look and its clearing is lost, which is accepted; so is what a loading thread of
    // the game mixes in by its binds. What only draws, clears and invalidations touch is plain: games render on one
    // thread.
    using Shared = orvel::Relaxed<int32_t>;

    static constexpr int32_t mTransferPattern[7] = {6, 108, -1, 6, 6, 6, 420};
    static constexpr int32_t mLaunchPattern[18] = {6, 60, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 420};

    // A load and a store instead of one indivisible step.
    static void increment(Shared& counter) { counter = counter + 1; }
    [[gnu::cold]] void countTransfer(const char* recogniser);
    [[gnu::cold]] void countLaunch();
    SceneId chooseScene() const;

    int32_t mLastSceneId = 0; // chosen last by the thread
    Shared mBossCount;
    Shared mTexSizeArr[4];        // width and height of the last bind but one, then of the last
    int32_t mEleCountArr[4] = {}; // oldest first
    Shared mTransferCount;
    Shared mLaunchCount;
    int32_t mTransferIndex = orvel::kBrokenPattern; // positions in the patterns
    int32_t mLaunchIndex = orvel::kBrokenPattern;
    Shared mHkrpgSceneCount;
    Shared mHkrpgSceneId{SCENE_ORDINARY};
    int32_t mHPEleCountArr[5] = {}; // oldest first
};

inline void SceneRecognizer::updateEleCountArr(const int& count) { orvel::appendToHistory(mEleCountArr, count); }

inline void SceneRecognizer::checkBossPattern() {
    const bool isLargeThenSmall =
        mTexSizeArr[0] == 1024 && mTexSizeArr[1] == 1024 && mTexSizeArr[2] == 4 && mTexSizeArr[3] == 4;
    if (!isLargeThenSmall) {
        return;
    }
    const auto& [e0, e1, e2, e3] = mEleCountArr;
    if ((e1 == 162 && e2 == 54 && e3 == 54) || (e0 == 162 && e1 == 54 && e2 % 6 == 0 && e3 == 54)) {
        increment(mBossCount);
    }
}

inline void SceneRecognizer::checkTransferPattern(const int& count) {
    constexpr int32_t kWildcard = 2;
    if (orvel::followPattern(mTransferPattern, kWildcard, mTransferIndex, count)) {
        countTransfer("checkTransferPattern");
    }
}

inline void SceneRecognizer::checkLaunchPattern(const int& count) {
    if (orvel::followPattern(mLaunchPattern, orvel::kNoWildcard, mLaunchIndex, count)) {
        countLaunch();
    }
}

inline void SceneRecognizer::checkTransferPatternHP(const int& count) {
    if (count > 0) {
        orvel::appendToHistory(mHPEleCountArr, count);
        return;
    }
    // Deliberately not the latest: one more draw comes before the end.
    static constexpr int32_t kOldest[] = {6, 6, 6, 12};
    if (count == 0 && std::equal(std::begin(kOldest), std::end(kOldest), mHPEleCountArr)) {
        countTransfer("checkTransferPatternHP");
    }
}

// What the hooks call. Each does nothing unless its switch is on and the recogniser exists; the test stands here so
// that a process without recognition pays one load for it. A count of 0 marks a clear or an invalidation. A hook that
// calls several gives them the recogniser, which is then looked up once.

void queryTexSizeArr();

/** Before a bind: records the size of the texture that was bound until now, so the history lags one bind behind. */
inline void updateTexSizeArr() {
    if (mEnableYSSceneRecognize && mSceneRecognizer) {
        queryTexSizeArr();
    }
}

inline void checkBossPattern(SceneRecognizer* recognizer = mSceneRecognizer.get()) {
    if (mEnableYSSceneRecognize && recognizer) {
        recognizer->checkBossPattern();
    }
}

inline void updateEleCountArr(const int& count, SceneRecognizer* recognizer = mSceneRecognizer.get()) {
    if (mEnableYSSceneRecognize && recognizer) {
        recognizer->updateEleCountArr(count);
    }
}

inline void checkTransferPattern(const int& count, SceneRecognizer* recognizer = mSceneRecognizer.get()) {
    if (mEnableYSTransferRecognize && recognizer) {
        recognizer->checkTransferPattern(count);
    }
}

inline void checkLaunchPattern(const int& count, SceneRecognizer* recognizer = mSceneRecognizer.get()) {
    if (mEnableYSLaunchRecognize && recognizer) {
        recognizer->checkLaunchPattern(count);
    }
}

inline void checkTransferPatternHP(const int& count, SceneRecognizer* recognizer = mSceneRecognizer.get()) {
    if (mEnableHPTransferRecognize && recognizer) {
        recognizer->checkTransferPatternHP(count);
    }
}

} // namespace android
