// The changes of GL parameters: which sizes, uniforms, rates and anisotropies become which.
#include "LogCapture.h"
#include "RecordingDriver.h"
#include "base/FsrConstants.h"
#include "legacy/OrvelSRControl.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"
#include "settings/orvel_modify_params.h"

#include <GLES2/gl2ext.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace android;
using namespace com::velmor::ravelo;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::FloatEq;
using testing::IsEmpty;
using testing::Pointwise;

namespace {

constexpr int kStorage = 1; // the kind that is logged
constexpr int kViewport = 0;

void target(int width, int height) {
    mEnableScaleResolutionSize = true;
    mTargetTexWidthYuanshen = width;
    mTargetTexHeightYuanshen = height;
    mTargetTexWidthYuanshen80 = width * 4 / 5;
    mTargetTexHeightYuanshen80 = height * 4 / 5;
    mTargetTexWidthYuanshenReciprocal = 1.0f / float(width);
    mTargetTexHeightYuanshenReciprocal = 1.0f / float(height);
}

std::string rewritten(int w, int h, int kind = kViewport) {
    modifyRenderPrecisionYuanshen(w, h, kind);
    return std::to_string(w) + "x" + std::to_string(h);
}

// ---- sizes --------------------------------------------------------------------------------------------

constexpr TEX_SIZE kSmall{960, 432};
constexpr TEX_SIZE kLarge{2400, 1080};

// Catches a width compared the wrong way round, a group that is missing, in another order or applied to the size as it
// was.
TEST(BuiltInList, SizesBecomeTheTarget) {
    struct Size {
        TEX_SIZE target;
        TEX_SIZE from;
        const char* to;
        bool low = false;
    };
    for (const auto& [to, from, expected, low] :
         {Size{{800, 500}, {864, 540}, "800x500"},
          {{972, 400}, {972, 436}, "972x436"},
          {kSmall, {864, 540}, "864x540"},
          {kSmall, {1280, 548}, "960x432"},
          {kSmall, {1296, 555}, "1296x555", true},
          {kSmall, {864, 369}, "864x369", true},
          {kSmall, {1620, 729}, "1620x729"},
          {kSmall, {1620, 694}, "960x432"},
          {{1344, 800}, {1344, 840}, "1344x840"},
          {kLarge, {1344, 840}, "2400x1080"},
          {kLarge, {0, 0}, "0x0"},
          {kSmall, {691, 432}, "691x432", true},
          {kSmall, {1296, 582}, "1296x582", true},
          {{1024, 438}, {1280, 576}, "1024x438", true}, // by what the second group made of it
          {{1440, 648}, {1620, 728}, "1440x648"}}) {    // shrunk, and not grown again
        SCOPED_TRACE(testing::Message() << from.width << "x" << from.height << " at target " << to.width);
        mIsYuanshenPostprocessLow = false;
        target(to.width, to.height);
        EXPECT_EQ(rewritten(from.width, from.height), expected);
        EXPECT_EQ(mIsYuanshenPostprocessLow, low);
    }
}

// Catches a low size after which the list still applies, and lines for calls that allocate nothing.
TEST(BuiltInList, EndsWithALowSize) {
    LogCapture log;
    target(960, 432);
    orveldebug = true;
    EXPECT_EQ(rewritten(1620, 728, kViewport), "960x432");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(rewritten(1620, 728, kStorage), "960x432");
    EXPECT_EQ(rewritten(810, 512, kStorage), "810x512");
    EXPECT_EQ(rewritten(1620, 728, kStorage), "1620x728");
    for (const auto& [debug, kind] : {std::pair{true, kViewport}, {false, kStorage}}) { // these write no line
        orveldebug = debug;
        mIsYuanshenPostprocessLow = false;
        EXPECT_EQ(rewritten(1620, 728, kind), "960x432");
        EXPECT_EQ(rewritten(810, 512, kind), "810x512");
    }
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_ERROR,
                                                 "orveldebug:modifyRenderPrecisionYuanshen, rf: 1620*728 -> 960*432"},
                                         LogLine{ANDROID_LOG_DEBUG, "yunshen postprocess low"}));
}

// Catches a list of the table that is asked although the width rules it out, out of turn, or that ends in another size;
// constants of another width.
TEST(DeviceTable, TheFirstListWithTheSizeDecides) {
    LogCapture log;
    target(1000, 500); // 80 %: 800 x 400
    mDeviceAdaptConfigMap = {{TEX_SIZE_POST_PROCESS_LOW, {{810, 5}, {900, 9}, {800, 8}}},
                             {TEX_SIZE_POST_PROCESS_HIGH, {{1200, 1}, {900, 9}, {1620, 728}}},
                             {TEX_SIZE_MAX_RESOLUTION, {{900, 7}, {1000, 2}, {800, 8}, {900, 9}}},
                             {TEX_SIZE_MAX_RESOLUTION_80P, {{700, 7}, {800, 3}}}};
    mPostProcessLowParamsMap = {{810, {1, 2}}, {800, {3}}};
    orveldebug = true;
    EXPECT_EQ(rewritten(900, 9, kStorage), "800x400");
    EXPECT_THAT(mPostprocessLowParam, IsEmpty()) << "none were derived for this width";
    EXPECT_FALSE(fixPostprocessLowIssue());
    EXPECT_EQ(rewritten(810, 5), "800x400");
    EXPECT_THAT(mPostprocessLowParam, ElementsAre(1, 2));
    EXPECT_TRUE(fixPostprocessLowIssue());
    EXPECT_EQ(rewritten(1200, 1, kStorage), "1000x500");
    EXPECT_EQ(rewritten(1000, 2), "1000x2") << "as wide as the target";
    EXPECT_EQ(rewritten(900, 7, kStorage), "1000x500");
    EXPECT_EQ(rewritten(800, 8), "1000x500") << "not wider than 80 %";
    EXPECT_EQ(rewritten(700, 7, kStorage), "800x400");
    EXPECT_EQ(rewritten(800, 3), "800x3");
    EXPECT_EQ(rewritten(1440, 648), "1440x648") << "the built-in list does not apply";
    const std::string start = "orveldebug:modifyRenderPrecisionYuanshen TEX_SIZE_";
    EXPECT_THAT(log.lines(),
                ElementsAre(LogLine{ANDROID_LOG_ERROR, start + "POST_PROCESS_LOW, rf: 900*9 -> 800*400"},
                            LogLine{ANDROID_LOG_ERROR, start + "POST_PROCESS_HIGH, rf: 1200*1 -> 1000*500"},
                            LogLine{ANDROID_LOG_ERROR, start + "MAX_RESOLUTION, rf: 900*7 -> 1000*500"},
                            LogLine{ANDROID_LOG_ERROR, start + "MAX_RESOLUTION_80P, rf: 700*7 -> 800*400"}));
    mEnableScaleResolutionSize = false;
    EXPECT_EQ(rewritten(810, 5), "810x5");
    EXPECT_FALSE(fixPostprocessLowIssue());
}

// ---- uniforms -----------------------------------------------------------------------------------------

// Catches a form that is not recognised or mixed up, one half that is rewritten, a line at another priority.
TEST(ScreenSizeUniform, KeepsItsForm) {
    LogCapture log;
    target(960, 432);
    orveldebug = true;
    std::array<float, 4> params{1620, 728, 1 + 1 / 1620.0f, 1 + 1 / 728.0f};
    modifyRenderPrecisionYuanshenShaderUniform(1, params.data());
    EXPECT_THAT(params, Pointwise(FloatEq(), {960.0f, 432.0f, 1 + 1 / 960.0f, 1 + 1 / 432.0f}));
    std::array<float, 4> texels{1 / 1620.5f, 1 / 728.5f, 1620.5f, 728.5f}; // cut off
    modifyRenderPrecisionYuanshenShaderUniform(1, texels.data());
    EXPECT_THAT(texels, Pointwise(FloatEq(), {1 / 960.0f, 1 / 432.0f, 960.0f, 432.0f}));
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR),
                ElementsAre("orveldebug:modifyRenderPrecisionYuanshenShaderUniform, su: [1620.000000, 728.000000, "
                            "1.000617, 1.001374] -> [960.000000, 432.000000, 1.001042, 1.002315]",
                            "orveldebug:modifyRenderPrecisionYuanshenShaderUniform, su: [0.000617, 0.001373, "
                            "1620.500000, 728.500000] -> [0.001042, 0.002315, 960.000000, 432.000000]"));
    const std::array<float, 4> whole{1620, 728, 1 + 1 / 1620.0f, 1 + 1 / 728.0f};
    params = whole;
    modifyRenderPrecisionYuanshenShaderUniform(2, params.data());
    EXPECT_EQ(params, whole) << "two vectors";
    mEnableScaleResolutionSize = false;
    modifyRenderPrecisionYuanshenShaderUniform(1, params.data());
    EXPECT_EQ(params, whole);
    mEnableScaleResolutionSize = true;
    orveldebug = false;
    modifyRenderPrecisionYuanshenShaderUniform(1, params.data());
    EXPECT_NE(params, whole);
    EXPECT_EQ(log.lines().size(), 2u) << "only those of above";
}

// Catches constants that are recognised loosely or in a vector of another length, and a wrong one of the sixteen.
TEST(UpscalingConstants, AreReplacedByThoseOfTheTarget) {
    LogCapture log;
    orveldebug = true;
    const auto games = orvel::fsrEasuConstants(1296, 582, 1620, 728);
    auto v = games;
    modifyPostprocessLowParam(v.data());
    EXPECT_EQ(v, games) << "nothing to compare with yet";
    mPostprocessLowParam.assign(games.begin(), games.end());
    target(1000, 500);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float other : {games[15] + 2e-6f, games[15] - 2e-6f, nan, INFINITY}) {
        v = games;
        v[15] = other;
        modifyPostprocessLowParam(v.data());
        EXPECT_EQ(v[0], games[0]) << other;
    }
    v = games;
    v[15] += 5e-7f;
    modifyPostprocessLowParam(v.data());
    const float expected[16] = {0.8f,      0.8f,   -0.1f,    -0.1f,  0.00125f, 0.0025f, 0.00125f, -0.0025f,
                                -0.00125f, 0.005f, 0.00125f, 0.005f, 0,        0.01f,   0.8f,     0.8f};
    EXPECT_THAT(v, Pointwise(FloatEq(), expected));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_DEBUG, "modifyPostprocessLowParam"}));
    v = games;
    mEnableScaleResolutionSize = false;
    modifyPostprocessLowParam(v.data());
    EXPECT_EQ(v, games);

    const float infinite[] = {INFINITY};
    EXPECT_FALSE(compareFloatArr({INFINITY}, infinite, 1));
    EXPECT_FALSE(compareFloatArr({1, 2}, games.data(), 1));
}

// ---- rate and anisotropy ------------------------------------------------------------------------------

std::vector<GLenum> sExtRates, sQcomRates;

// Catches a rate that is off by one, set through the wrong extension, or not set at each draw.
TEST(ShadingRate, IsSetThroughTheExtensionThatThereIs) {
    const LogCapture log;
    orvel::next::ext = {};
    mEnableShadingRate = true;
    mShadingRate = 1;
    modifyShadingRate(); // no driver has it
    orvel::next::ext.glShadingRateQCOM = [](GLenum rate) { sQcomRates.push_back(rate); };
    for (mShadingRate = 0; mShadingRate <= 6; ++mShadingRate) {
        modifyShadingRate();
    }
    EXPECT_THAT(sQcomRates, ElementsAre(0x96A7, 0x96A8, 0x96A9, 0x96AC, 0x96AE));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_ERROR, "orvel:undefined shading rate"}));
    orvel::next::ext.glShadingRateEXT = [](GLenum rate) { sExtRates.push_back(rate); };
    mShadingRate = 3;
    orveldebug = true;
    modifyShadingRate();
    modifyShadingRate();
    EXPECT_THAT(sExtRates, ElementsAre(0x96A9, 0x96A9));
    EXPECT_TRUE(log.has(ANDROID_LOG_ERROR, "orveldebug:modifyShadingRate, mShadingRate: 3"));
    mEnableShadingRate = false;
    modifyShadingRate();
    EXPECT_EQ(sExtRates.size(), 2u);
    EXPECT_EQ(sQcomRates.size(), 5u);
}

// Catches an anisotropy that is raised, another parameter that is capped, a cap while it is off.
TEST(Anisotropy, IsOnlyLowered) {
    const LogCapture log;
    const auto modified = [](GLenum pname, int value) {
        modifyAFValuePubg(pname, value);
        return value;
    };
    mTargetAFValue = 4;
    EXPECT_EQ(modified(GL_TEXTURE_MAX_ANISOTROPY_EXT, 16), 16);
    mEnableAFModify = true;
    orveldebug = true;
    EXPECT_EQ(modified(GL_TEXTURE_MAX_ANISOTROPY_EXT, 16), 4);
    EXPECT_EQ(modified(GL_TEXTURE_MAX_ANISOTROPY_EXT, 4), 4);
    EXPECT_EQ(modified(GL_TEXTURE_MAX_ANISOTROPY_EXT, 2), 2);
    EXPECT_EQ(modified(GL_TEXTURE_MAG_FILTER, GL_LINEAR), GL_LINEAR);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_ERROR, "orveldebug:modifyAFValuePubg, af: 16 -> 4"}));
}

// ---- the window's buffers -----------------------------------------------------------------------------

// Catches a native size that is replaced before anything was asked of the window, or by 0 x 0, and one whose turn the
// switch for the games' sizes decides.
TEST(BackbufferSize, ReplacesTheNativeSizeOnceOneWasAskedFor) {
    const auto driver = RecordingDriver::installed();
    LogCapture log;
    EXPECT_EQ(rewritten(2400, 1080), "2400x1080") << "no preferences";
    auto* prefs = new OrvelPrefs;
    orvel::OrvelSettings::getInstance().mPrefs = prefs;
    prefs->mBackbufferSizes = {2400, 1080, 1, 2, 1620, 728, 2712, 1220};
    prefs->mBackbufferSizeValid = true;
    EXPECT_EQ(rewritten(2400, 1080), "2400x1080");
    orvel::OrvelSRControl::getInstance().updateGameSRConfig(); // no switch: the size for "off" is asked for
    ASSERT_EQ(orvel::OrvelSRControl::getInstance().getTargetBackbufferSize(), (std::pair<int32_t, int32_t>{1620, 728}));
    log.clear();
    orveldebug = true;
    EXPECT_EQ(rewritten(2400, 1080, kViewport), "1620x728");
    EXPECT_EQ(rewritten(2400, 1081, kStorage), "2400x1081");
    EXPECT_EQ(rewritten(2400, 1080, kStorage), "1620x728");
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_INFO, "BFSize: 2400x1080 -> 1620x728"}));
    EXPECT_EQ(rewritten(1080, 2400), "1080x2400");
    target(960, 432);
    EXPECT_EQ(rewritten(2400, 1080), "1620x728");
    mIsYuanshenPostprocessLow = true;
    EXPECT_EQ(rewritten(2400, 1080), "1620x728") << "after the list, whatever it says";
    mDeviceAdaptConfigMap = {{TEX_SIZE_POST_PROCESS_HIGH, {{2400, 1}}}};
    EXPECT_EQ(rewritten(2400, 1080), "1620x728") << "nor does a table without it";
    mDeviceAdaptConfigMap = {{TEX_SIZE_POST_PROCESS_HIGH, {{2400, 1080}}}};
    EXPECT_EQ(rewritten(2400, 1080), "960x432") << "a list of the table has the last word";
    mDeviceAdaptConfigMap.clear();
    prefs->mBackbufferSizeValid = false;
    EXPECT_EQ(rewritten(2400, 1080), "2400x1080");
}

} // namespace
