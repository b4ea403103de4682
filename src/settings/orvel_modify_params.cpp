#include "settings/orvel_modify_params.h"

#include "base/OrvelLog.h"
#include "legacy/OrvelDRR.h" // upwards, as the next two: here the features get their settings and their start
#include "legacy/OrvelSRControl.h"
#include "legacy/SceneRecognizer.h"
#include "settings/OrvelDebugProperty.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

namespace android {

using com::velmor::ravelo::OrvelPrefs;
using com::velmor::ravelo::TEX_SIZE;
using com::velmor::ravelo::TYPE_ADAPT_SET;
using orvel::OrvelSettings;

bool orveldebug = false;

bool mEnableScaleResolutionSize = false;
int32_t mTargetTexWidthYuanshen = -1;
int32_t mTargetTexHeightYuanshen = -1;
float mTargetTexWidthYuanshenReciprocal = -1.0f;
float mTargetTexHeightYuanshenReciprocal = -1.0f;
int32_t mTargetTexWidthYuanshen80 = -1;
int32_t mTargetTexHeightYuanshen80 = -1;

bool mEnableShadingRate = false;
int32_t mShadingRate = 0;
bool mEnableAFModify = false;
int32_t mTargetAFValue = -1;

std::map<TYPE_ADAPT_SET, std::vector<TEX_SIZE>>& mDeviceAdaptConfigMap =
    *new std::map<TYPE_ADAPT_SET, std::vector<TEX_SIZE>>;
std::map<int32_t, std::vector<float>>& mPostProcessLowParamsMap = *new std::map<int32_t, std::vector<float>>;
std::vector<float>& mPostprocessLowParam = *new std::vector<float>;
TEX_SIZE mGameSCSize;
int32_t mShaderReplaceValue = -1;

bool mEnableYSSceneRecognize = false;
bool mEnableYSTransferRecognize = false;
bool mEnableYSLaunchRecognize = false;
bool mEnableHkrpgSceneRecognize = false;
bool mEnableHPTransferRecognize = false;
sp<SceneRecognizer>& mSceneRecognizer = *new sp<SceneRecognizer>;
std::map<HKRPG_SCENE, int32_t>& mHkrpeMinmapTextureMap = *new std::map<HKRPG_SCENE, int32_t>;

constinit orvel::Relaxed<bool> mEnableDynamicResolution = false;
orvel::OrvelDRR* mOrvelDRR = nullptr;
int32_t mDFIInterval = -1;

namespace {

/** @return the member of the preferences; without preferences 0, false or empty, not the member's own default */
template <typename T>
T fromPrefs(T OrvelPrefs::*member) {
    const OrvelPrefs* prefs = OrvelSettings::getInstance().mPrefs;
    return prefs ? prefs->*member : T{};
}

void initTargetSize() {
    mEnableScaleResolutionSize = fromPrefs(&OrvelPrefs::mTexSizeEnabled);
    const TEX_SIZE size = fromPrefs(&OrvelPrefs::mTexSize);
    mTargetTexWidthYuanshen = size.width;
    mTargetTexHeightYuanshen = size.height;
    // Accepted: without a size the reciprocals are infinite; nothing reads them then.
    mTargetTexWidthYuanshenReciprocal = 1.0f / static_cast<float>(size.width);
    mTargetTexHeightYuanshenReciprocal = 1.0f / static_cast<float>(size.height);
    // Cut off, not rounded, and in double precision.
    mTargetTexWidthYuanshen80 = static_cast<int32_t>(size.width * 0.8);
    mTargetTexHeightYuanshen80 = static_cast<int32_t>(size.height * 0.8);
}

void initAdaptSizes() {
    mDeviceAdaptConfigMap = fromPrefs(&OrvelPrefs::mAdaptSizes);
    mPostProcessLowParamsMap = fromPrefs(&OrvelPrefs::mPostProcessLowParams);
    mPostprocessLowParam.reserve(16); // hooks ask for no memory
    const auto sizes = mDeviceAdaptConfigMap.find(com::velmor::ravelo::TEX_SIZE_MAX_RESOLUTION);
    if (sizes == mDeviceAdaptConfigMap.end() || sizes->second.empty()) {
        return;
    }
    mGameSCSize = sizes->second.front();
    ORVEL_LOGI_IF(orveldebug, "mGameSCSize: %dx%d", mGameSCSize.width, mGameSCSize.height);
}

void initSceneRecognition() {
    mEnableYSSceneRecognize = fromPrefs(&OrvelPrefs::mYSSceneRecognize);
    mEnableYSTransferRecognize = fromPrefs(&OrvelPrefs::mYSTransferRecognize);
    mEnableYSLaunchRecognize = fromPrefs(&OrvelPrefs::mYSLaunchRecognize);
    mEnableHkrpgSceneRecognize = fromPrefs(&OrvelPrefs::mHkrpgSceneRecognize);
    mEnableHPTransferRecognize = fromPrefs(&OrvelPrefs::mHPTransferRecognize);
    const bool any = mEnableYSSceneRecognize || mEnableYSTransferRecognize || mEnableYSLaunchRecognize ||
                     mEnableHkrpgSceneRecognize || mEnableHPTransferRecognize;
    if (any && mSceneRecognizer == nullptr) {
        mSceneRecognizer = new SceneRecognizer;
        mSceneRecognizer->incStrong(nullptr); // never freed: hooks may still run when the process ends
        mSceneRecognizer->startThread();
    }
}

void initDynamicResolution() {
    const OrvelSettings& settings = OrvelSettings::getInstance();
    const OrvelPrefs* prefs = settings.mPrefs;
    if (!prefs) {
        return;
    }
    mEnableDynamicResolution = prefs->mDRREnabled;
    if (mEnableDynamicResolution && !mOrvelDRR) {
        mOrvelDRR = new orvel::OrvelDRR(mEnableDynamicResolution, orveldebug, settings.mPackageName.string(),
                                        prefs->mDRRUpdateInterval, prefs->mDRRBaseSizes, prefs->mDRRAvailableSizes,
                                        prefs->mDRRIllegalSizes);
    }
}

void logSettings() {
    const int cachedValue = 0; // a field of the line that no setting fills
    ORVEL_LOGE_IF(orveldebug,
                  "orveldebug: ScaleResolutionSize(%d %d %d), ShadingRate(%d %d),AFModify(%d %d), CachedValue= %d, "
                  "mEnableDynamicResolution=%d",
                  mEnableScaleResolutionSize, mTargetTexWidthYuanshen, mTargetTexHeightYuanshen, mEnableShadingRate,
                  mShadingRate, mEnableAFModify, mTargetAFValue, cachedValue, bool{mEnableDynamicResolution});
    ORVEL_LOGE_IF(orveldebug,
                  "orveldebug: YSSceneRecognize=%d, mEnableYSTransferRecognize=%d, mEnableYSLaunchRecognize=%d, "
                  "mEnableHPTransferRecognize=%d",
                  mEnableYSSceneRecognize, mEnableYSTransferRecognize, mEnableYSLaunchRecognize,
                  mEnableHPTransferRecognize);
    ORVEL_LOGI("EnableDR: %d", bool{mEnableDynamicResolution});
}

} // namespace

void initGameSetting() {
    if (orvel::isDebugPropertySet()) {
        orveldebug = true;
    }
    OrvelSettings& settings = OrvelSettings::getInstance();
    settings.init();
    initTargetSize();
    mEnableShadingRate = fromPrefs(&OrvelPrefs::mShadingRateEnabled);
    mShadingRate = fromPrefs(&OrvelPrefs::mShadingRate);
    mEnableAFModify = fromPrefs(&OrvelPrefs::mTexAnisotropyEnabled);
    mTargetAFValue = fromPrefs(&OrvelPrefs::mTexAnisotropy);
    orvel::OrvelSRControl::getInstance().initSuperResolutionConfig();
    initAdaptSizes();
    mShaderReplaceValue = fromPrefs(&OrvelPrefs::mShaderReplaceConfig);
    initSceneRecognition();
    initDynamicResolution();
    logSettings();
    mDFIInterval = settings.mPrefs ? settings.mPrefs->mDFIInterval : -1;
    ORVEL_LOGD("mDFIInterval: %d", mDFIInterval);
}

} // namespace android
