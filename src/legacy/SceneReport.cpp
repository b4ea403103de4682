// The reporting thread: what the counts say, and how the tuning service is told.
#include "legacy/SceneRecognizer.h"

#include "base/OrvelClock.h"
#include "base/OrvelLog.h"
#include "settings/RaveloService.h"

#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <utils/String16.h>

#include <exception>
#include <string>
#include <sys/prctl.h>

namespace android {

int32_t mRemainSendTimes = 0;

namespace {

constexpr char kThreadName[] = "RecognizeBossThread";
constexpr int32_t kThreadPriority = -8; // a process without the right to that keeps the default
constexpr int64_t kPeriodMicros = 2'000'000;
constexpr int32_t kSendTimes = 2; // of each newly chosen scene, in consecutive periods

bool isCounted(int32_t counter) { return counter >= 1; }

} // namespace

void SceneRecognizer::startThread() {
    ORVEL_LOGI("RecognizeBossThread startThread");
    if (const status_t status = run(kThreadName, kThreadPriority, /*default stack*/ 0); status != NO_ERROR) {
        ORVEL_LOGE("RecognizeBossThread does not start: %d", status);
    }
}

/** On the new thread. A desktop's thread class does not pass the name on; the system keeps 15 characters of it. */
status_t SceneRecognizer::readyToRun() {
    prctl(PR_SET_NAME, kThreadName);
    return NO_ERROR;
}

void SceneRecognizer::stopThread() {
    ORVEL_LOGI("RecognizeBossThread stopThread");
    requestExitAndWait();
}

/** @return what was counted, the rarest first; SCENE_ORDINARY for nothing */
SceneRecognizer::SceneId SceneRecognizer::chooseScene() const {
    if (isCounted(mBossCount)) {
        return SCENE_BOSS;
    }
    if (isCounted(mTransferCount)) {
        return SCENE_TRANSFER;
    }
    if (isCounted(mLaunchCount)) {
        return SCENE_LAUNCH;
    }
    return SCENE_ORDINARY;
}

bool SceneRecognizer::threadLoop() {
    const SceneId scene = chooseScene();
    if (scene == SCENE_ORDINARY && isCounted(mHkrpgSceneCount)) {
        // Deliberately apart from the scenes below: sent at once, once, and also when it was just sent.
        sendSceneIdToRavelo(mHkrpgSceneId);
        mHkrpgSceneCount = 0;
        orvel::sleepMicros(kPeriodMicros);
        return true;
    }
    if (scene != mLastSceneId) {
        mLastSceneId = scene;
        mRemainSendTimes = kSendTimes;
    }
    if (mRemainSendTimes >= 1) {
        sendSceneIdToRavelo(scene);
        --mRemainSendTimes;
    }
    mBossCount = 0;
    mTransferCount = 0;
    mLaunchCount = 0;
    orvel::sleepMicros(kPeriodMicros);
    return true;
}

int32_t SceneRecognizer::sendSceneIdToRavelo(int32_t sceneId) {
    ORVEL_LOGD("sendSceneIdToRavelo, sceneId: %d", sceneId);
    try {
        const sp<IBinder> binder = defaultServiceManager()->checkService(String16(orvel::kRaveloName));
        if (!binder) {
            ORVEL_LOGW("remote service not exist.");
            return SEND_NO_SERVICE;
        }
        Parcel request;
        Parcel reply; // nothing is read from it
        request.writeInterfaceToken(String16(orvel::kRaveloInterface));
        request.writeInt32(1);
        request.writeString16(String16(("{\"sceneId\":" + std::to_string(sceneId) + "}").c_str()));
        if (binder->transact(orvel::kRaveloReportScene, request, &reply, 0) == NO_ERROR) {
            return SEND_DONE;
        }
    } catch (const std::exception&) { // out of memory: lost as a failed call is, the next one comes
    }
    ORVEL_LOGE("orvel:call remote service failed.");
    return SEND_CALL_FAILED;
}

} // namespace android
