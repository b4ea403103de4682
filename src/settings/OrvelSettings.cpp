#include "settings/OrvelSettings.h"

#include "base/OrvelLog.h"
#include "base/OrvelParse.h"
#include "base/OrvelPaths.h"
#include "settings/GameInfoMonitor.h"
#include "settings/OrvelPrefs.h"
#include "settings/RaveloService.h"

#include <android-base/file.h>
#include <android-base/stringprintf.h>
#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <utils/String16.h>

#include <memory>
#include <mutex>
#include <string>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace android::orvel {

using com::velmor::ravelo::OrvelPrefs;

namespace {

/** Tells the settings that the service has died. */
class RemoteDeath : public IBinder::DeathRecipient {
public:
    explicit RemoteDeath(OrvelSettings* settings) : mSettings(settings) {}
    void binderDied(const wp<IBinder>&) override { mSettings->onRemoteServiceDied(); }

private:
    OrvelSettings* const mSettings;
};

std::mutex sRemoteBinderMutex; // taken by the start-up thread and the binder thread only

// A binder holds its recipients weakly: without this reference no notice would ever come. It is never destroyed, since
// one may come while the process ends.
auto& sLastRecipient = *new sp<IBinder::DeathRecipient>;

} // namespace

OrvelSettings& OrvelSettings::getInstance() {
    static auto& settings = *new OrvelSettings; // never destroyed: hooks may still run while the process ends
    return settings;
}

OrvelSettings::OrvelSettings() : mPid(getpid()) {}

OrvelSettings::~OrvelSettings() {
    sLastRecipient.clear(); // no notice may come for what is about to go
    replaceRemoteBinder(nullptr);
    delete std::exchange(mPrefs, nullptr);
}

void OrvelSettings::init() {
    std::string cmdline;
    if (!base::ReadFileToString(systemPath(base::StringPrintf("/proc/%d/cmdline", mPid).c_str()), &cmdline)) {
        ORVEL_LOGE("Failed to read the process name");
        return;
    }
    const std::unordered_map<std::string, OrvelApplicationType> packages = {
        {"com.tencent.tmgp.pubgmhd", APP_TYPE_PUBG},
        {"com.miHoYo.ys.vo", APP_TYPE_YUANSHEN},
        {"com.miHoYo.Yuanshen", APP_TYPE_YUANSHEN},
        {"com.miHoYo.ys.bilibili", APP_TYPE_YUANSHEN},
        {"com.miHoYo.GenshinImpact", APP_TYPE_YUANSHEN},
        {"com.miHoYo.hkrpg", APP_TYPE_HKRPG},
        {"com.netease.harrypotter", APP_TYPE_HP},
        {"com.netease.harrypotter.vo", APP_TYPE_HP},
        {"com.tencent.tmgp.sgame", APP_TYPE_SGAME},
        {"com.tencent.tmgp.sgamece", APP_TYPE_SGAME},
        {"com.ss.android.ugc.aweme", APP_TYPE_AWEME},
        {"com.tencent.qqlive", APP_TYPE_QQLIVE},
        {"tv.danmaku.bili", APP_TYPE_BILI},
    };
    const std::string name = cmdline.c_str(); // argv[0]; the arguments follow its zero byte
    const auto package = packages.find(name);
    if (package == packages.end()) {
        return;
    }
    mApplicationType = package->second; // before the query: the preferences ask for it
    ORVEL_LOGI("pid: %d, cmdline: %s", mPid, name.c_str());
    mPackageName = name.c_str();
    initOrvelPrefs();
    GameInfoMonitor::getInstance().setPackageName(cmdline);
}

int32_t OrvelSettings::initOrvelPrefs() {
    Parcel request;
    Parcel reply;
    // A strong reference of our own: the death notice may drop the member's during the call.
    const sp<IBinder> binder = defaultServiceManager()->checkService(String16(kRaveloName));
    replaceRemoteBinder(binder);
    if (!binder) {
        ORVEL_LOGW("remote service not exist.");
        return QUERY_NO_SERVICE;
    }
    sLastRecipient = new RemoteDeath(this);
    binder->linkToDeath(sLastRecipient);
    request.writeInterfaceToken(String16(kRaveloInterface));
    if (!mPackageNameResolved && initActivityThreadClass()) {
        mPackageNameResolved = true;
        mPackageName = getCurrentPackageName();
    }
    request.writeString16(String16(mPackageName));
    if (binder->transact(kRaveloGetConfiguration, request, &reply, 0) != NO_ERROR) {
        ORVEL_LOGE("orvel:call remote service failed.");
        return QUERY_CALL_FAILED;
    }
    if (reply.readExceptionCode() != 0) {
        return QUERY_EXCEPTION;
    }
    const String8 answer(reply.readString16());
    auto prefs = std::make_unique<OrvelPrefs>();
    if (!answer.isEmpty()) {
        prefs->readFromRavelo(std::string(answer.string(), answer.size()));
        prefs->mEnabled = true;
    }
    // Only now, complete. Deliberate: those of an earlier query are not deleted, render contexts may still hold their
    // data.
    mPrefs = prefs.release();
    return mPrefs->mEnabled ? QUERY_CONFIGURED : QUERY_EMPTY_ANSWER;
}

void OrvelSettings::onRemoteServiceDied() {
    replaceRemoteBinder(nullptr);
    ORVEL_LOGE("remote service died!");
}

void OrvelSettings::replaceRemoteBinder(const sp<IBinder>& binder) {
    sp<IBinder> released = binder; // a binder's own destructor must not run under the mutex
    const std::lock_guard lock(sRemoteBinderMutex);
    std::swap(mRemoteBinder, released);
}

app::OrvelProcessorDataBase& OrvelSettings::getProcessorData() {
    return mPrefs && mPrefs->mProcessorData ? *mPrefs->mProcessorData : mProcessorData;
}

const GameInfo* OrvelSettings::getGameInfo() const { return &GameInfoMonitor::getInstance().getGameInfo(); }
int32_t OrvelSettings::getImageQuality() const { return getGameInfo()->mImageQuality; }
int32_t OrvelSettings::getSceneId() const { return getGameInfo()->mSceneId; }
int32_t OrvelSettings::getVrsLevel() const { return getGameInfo()->mVrsLevel; }
uint8_t OrvelSettings::getSmallWindowSig() const { return getGameInfo()->mSmallWindow; }
int32_t OrvelSettings::getFilterType() const { return getGameInfo()->mFilterType; }
int32_t OrvelSettings::getLutStrength() const { return getGameInfo()->mLutStrength; }
int32_t OrvelSettings::getDarkEdge() const { return getGameInfo()->mDarkEdge; }

std::vector<std::string> OrvelSettings::split(const std::string& text, const std::string& delimiters) {
    return splitText(text, delimiters);
}

} // namespace android::orvel
