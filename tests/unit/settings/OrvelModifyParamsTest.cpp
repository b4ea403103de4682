#include "settings/orvel_modify_params.h"

#include "FakeRavelo.h"
#include "LogCapture.h"
#include "TestRoot.h"
#include "legacy/SceneRecognizer.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <cutils/properties.h>
#include <gmock/gmock.h>

#include <cmath>

using namespace android;
using android::orvel::OrvelSettings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void start(const std::string& package, const std::string& configs) {
    const TestRoot root;
    root.bePackage(package);
    const auto service = FakeRavelo::offer(R"({"configs":{)" + configs + "}}");
    initGameSetting();
}

// Catches variables that keep their initial value, or take a default of the preferences, when no service answered.
TEST(GameSetting, WithoutServiceAllIsZero) {
    const TestRoot root;
    root.bePackage("com.miHoYo.Yuanshen");
    LogCapture log;
    initGameSetting();
    EXPECT_EQ(mTargetTexWidthYuanshen, 0);
    EXPECT_EQ(mTargetTexHeightYuanshen80, 0);
    EXPECT_TRUE(std::isinf(mTargetTexWidthYuanshenReciprocal));
    EXPECT_EQ(mTargetAFValue, 0);
    EXPECT_EQ(mShaderReplaceValue, 0);
    EXPECT_EQ(mDFIInterval, -1);
    EXPECT_EQ(mSceneRecognizer, nullptr);
    EXPECT_EQ(mOrvelDRR, nullptr);
    EXPECT_TRUE(log.has(ANDROID_LOG_WARN, "remote service not exist."));
    EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "EnableDR: 0"));
    EXPECT_TRUE(log.has(ANDROID_LOG_DEBUG, "mDFIInterval: -1"));
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR), IsEmpty());
}

// Catches a variable that is filled from the wrong member, 80 % that are rounded, and debug lines at another priority,
// with another spacing or with their values in another order.
TEST(GameSetting, TakesTheAnswer) {
    property_set("vendor.orvel.debug", "true");
    LogCapture log;
    start("com.miHoYo.Yuanshen", R"("tex_size":"1920x1082","shader_rate":"3","tex_param_anisotropy":"2",)"
                                 R"("post_process_low":"4x8","post_process_high":"8x16","max_resolution":"9x5;7x3",)"
                                 R"("shader_replace_config":"1","dfi_interval":"20","ys_launch_recognize":"1")");
    EXPECT_TRUE(mEnableScaleResolutionSize);
    EXPECT_EQ(mTargetTexWidthYuanshen, 1920);
    EXPECT_EQ(mTargetTexHeightYuanshen, 1082);
    EXPECT_EQ(mTargetTexWidthYuanshenReciprocal, 1.0f / 1920);
    EXPECT_EQ(mTargetTexHeightYuanshenReciprocal, 1.0f / 1082);
    EXPECT_EQ(mTargetTexWidthYuanshen80, 1536);
    EXPECT_EQ(mTargetTexHeightYuanshen80, 865);
    EXPECT_TRUE(mEnableShadingRate);
    EXPECT_EQ(mShadingRate, 3);
    EXPECT_TRUE(mEnableAFModify);
    EXPECT_EQ(mTargetAFValue, 2);
    EXPECT_EQ(mDeviceAdaptConfigMap.size(), 3u);
    EXPECT_EQ(mPostProcessLowParamsMap.at(4).size(), 16u);
    EXPECT_EQ(mGameSCSize, (com::velmor::ravelo::TEX_SIZE{9, 5}));
    EXPECT_EQ(mShaderReplaceValue, 1);
    EXPECT_EQ(mDFIInterval, 20);
    EXPECT_FALSE(mEnableYSSceneRecognize || mEnableYSTransferRecognize || mEnableHkrpgSceneRecognize ||
                 mEnableHPTransferRecognize);
    EXPECT_TRUE(mEnableYSLaunchRecognize);
    EXPECT_NE(mSceneRecognizer, nullptr); // one of the five is enough
    EXPECT_FALSE(mEnableDynamicResolution);
    EXPECT_EQ(mOrvelDRR, nullptr);
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR),
                ElementsAre("orveldebug: ScaleResolutionSize(1 1920 1082), ShadingRate(1 3),AFModify(1 2), "
                            "CachedValue= 0, mEnableDynamicResolution=0",
                            "orveldebug: YSSceneRecognize=0, mEnableYSTransferRecognize=0, "
                            "mEnableYSLaunchRecognize=1, mEnableHPTransferRecognize=0"));
    EXPECT_TRUE(log.has(ANDROID_LOG_INFO, "mGameSCSize: 9x5"));
}

// Catches a second start that creates the feature objects again, keeps old values, or clears a size it must keep.
TEST(GameSetting, SecondRunRefreshesVariablesOnly) {
    const std::string drr = R"("drr_enable":"1","drr_base_size":"8x4","drr_available_size":"4x2")";
    start("com.miHoYo.hkrpg", drr + R"(,"hkrpg_scene_recognize":"1","max_resolution":"9x5","dfi_interval":"20")");
    const SceneRecognizer* recognizer = mSceneRecognizer.get();
    const orvel::OrvelDRR* dynamicResolution = mOrvelDRR;
    ASSERT_NE(recognizer, nullptr);
    ASSERT_NE(dynamicResolution, nullptr);
    EXPECT_TRUE(mEnableDynamicResolution);
    const std::unique_ptr<com::velmor::ravelo::OrvelPrefs> first(OrvelSettings::getInstance().mPrefs);

    start("com.miHoYo.hkrpg", drr);
    EXPECT_NE(OrvelSettings::getInstance().mPrefs, first.get());
    EXPECT_EQ(mSceneRecognizer.get(), recognizer);
    EXPECT_EQ(mOrvelDRR, dynamicResolution);
    EXPECT_FALSE(mEnableHkrpgSceneRecognize);
    EXPECT_THAT(mDeviceAdaptConfigMap, IsEmpty());
    EXPECT_EQ(mGameSCSize, (com::velmor::ravelo::TEX_SIZE{9, 5}));
    EXPECT_EQ(mDFIInterval, -1);
}

} // namespace
