#include "settings/OrvelPrefs.h"

#include "LogCapture.h"
#include "base/FsrConstants.h"
#include "settings/OrvelSettings.h"

#include <gmock/gmock.h>

using namespace android;
using namespace com::velmor::ravelo;
using android::orvel::OrvelSettings;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

void read(OrvelPrefs& prefs, OrvelApplicationType type, const std::string& configs) {
    OrvelSettings::getInstance().mApplicationType = type;
    prefs.readFromRavelo(R"({"configs":{)" + configs + "}}");
}

std::string text(const TEX_SIZE& size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

/** What differs from an untouched object, as text: a key that reaches a member that is not its own shows up too. */
std::string describe(const OrvelPrefs& prefs) {
    std::string all;
    const auto add = [&all](const char* name, const std::string& value, const std::string& untouched) {
        all += value == untouched ? "" : name + ("=" + value) + " ";
    };
    const auto flag = [&all](const char* name, bool value) { all += value ? name + std::string(" ") : ""; };
    const auto number = [&add](const char* name, int value, int untouched = 0) {
        add(name, std::to_string(value), std::to_string(untouched));
    };
    flag("anisotropyOn", prefs.mTexAnisotropyEnabled);
    number("anisotropy", prefs.mTexAnisotropy);
    flag("sizeOn", prefs.mTexSizeEnabled);
    add("size", text(prefs.mTexSize), "0x0");
    flag("rateOn", prefs.mShadingRateEnabled);
    number("rate", prefs.mShadingRate);
    flag("ysScene", prefs.mYSSceneRecognize);
    flag("ysTransfer", prefs.mYSTransferRecognize);
    flag("ysLaunch", prefs.mYSLaunchRecognize);
    flag("hkrpgScene", prefs.mHkrpgSceneRecognize);
    flag("hpTransfer", prefs.mHPTransferRecognize);
    number("shader", prefs.mShaderReplaceConfig, -1);
    flag("drr", prefs.mDRREnabled);
    number("interval", prefs.mDRRUpdateInterval, 10);
    for (const TEX_SIZE& size : prefs.mDRRBaseSizes) {
        add("base", text(size), "");
    }
    for (const TEX_SIZE& size : prefs.mDRRAvailableSizes) {
        add("available", text(size), "");
    }
    for (const TEX_SIZE& size : prefs.mDRRIllegalSizes) {
        add("illegal", text(size), "");
    }
    number("dfi", prefs.mDFIInterval, -1);
    flag("dynamicDfi", prefs.mDynamicDFIEnabled);
    flag("bufferOn", prefs.mBackbufferSizeValid);
    for (const int32_t value : prefs.mBackbufferSizes) {
        number("b", value);
    }
    add("sr0", text(prefs.mSRSizes[0]), "0x0");
    add("sr1", text(prefs.mSRSizes[1]), "0x0");
    for (const auto& [set, list] : prefs.mAdaptSizes) {
        all += "adapt" + std::to_string(set) + ":" + std::to_string(list.size()) + " ";
    }
    return all;
}

constexpr auto YS = APP_TYPE_YUANSHEN;
constexpr char kDrr[] = R"("drr_enable":"1","drr_base_size":"8x4;6x3","drr_available_size":"4x2")";
constexpr char kDrrIllegal[] = R"("drr_enable":"1","drr_update_interval":"5","drr_base_size":"8x4",)"
                               R"("drr_available_size":"4x2","drr_illegal_size":"2x1")";
constexpr char kMixed[] = R"("tex_size":"8x4","tex_param_anisotropy":"2","dynamic_dfi_interval":"1")";

struct Keys {
    OrvelApplicationType type;
    const char* configs;
    const char* expected;
    const char* error = nullptr; // the key that the one error line names, if there is one
};

const Keys kKeys[] = {
    {YS, "", ""},
    {YS, R"("tex_size":"1920x1080x5")", "sizeOn size=1920x1080 "},
    {YS, R"("tex_size":"0x720")", ""},
    {YS, R"("tex_size":"1920x")", "", "tex_size"},
    {YS, R"("tex_size":["8x4"])", "", "tex_size"},
    {YS, R"("shader_rate":" +3.9")", "rateOn rate=3 "},
    {YS, R"("shader_rate":"x")", "", "shader_rate"},
    {YS, R"("tex_param_anisotropy":"8")", "anisotropyOn anisotropy=8 "},
    {YS, R"("ys_scene_recognize":"0")", "ysScene "},
    {YS, R"("ys_scene_recognize":"")", ""},
    {YS, R"("ys_transfer_recognize":"01")", "ysTransfer "},
    {YS, R"("ys_launch_recognize":"1")", "ysLaunch "},
    {YS, R"("hkrpg_scene_recognize":"1")", "hkrpgScene "},
    {YS, R"("hp_transfer_recognize":"1")", "hpTransfer "},
    {YS, R"("shader_replace_config":"2")", "shader=2 "},
    {YS, R"("shader_replace_config":"-5")", ""},
    {YS, R"("dfi_interval":"-7")", "dfi=-7 "},
    {YS, R"("dfi_interval":"99999999999","shader_rate":"1")", "rateOn rate=1 ", "dfi_interval"},
    {YS, R"("orvel_sr_config":"8x4;16x-8;bad")", "sr0=8x4 sr1=16x-8 "},
    {YS, R"("orvel_sr_config":"8x4;16")", "", "orvel_sr_config"},
    {YS, R"("orvel_sr_backbuffer_size_config":"1,2,3,4,5,6,7,8,9")", "bufferOn b=1 b=2 b=3 b=4 b=5 b=6 b=7 b=8 "},
    {YS, R"("orvel_sr_backbuffer_size_config":"1,2,3,-4,5,6,7,8")", "b=1 b=2 b=3 b=-4 b=5 b=6 b=7 b=8 "},
    {YS, R"("orvel_sr_backbuffer_size_config":"1,2,3,4,5,6,7")", "b=1 b=2 b=3 b=4 b=5 b=6 b=7 "},
    {YS, R"("orvel_sr_backbuffer_size_config":"1,z,3,4,5,6,7,8")", "", "orvel_sr_backbuffer_size_config"},
    {YS, R"("max_resolution":"8x4;6x3","max_resolution_80p":"1x1")", "adapt2:2 adapt3:1 "},
    {YS, R"("post_process_low":"8x4;6","max_resolution":";")", "", "post_process_low"},
    {YS, R"("drr_enable":true,"drr_base_size":"8x4")", ""},
    {YS, R"("drr_enable":"1","drr_base_size":"8x4;6","drr_available_size":"4x2")", "available=4x2 ", "drr_base_size"},
    {YS, kDrr, "base=8x4 base=6x3 available=4x2 "},
    {YS, kDrrIllegal, "drr interval=5 base=8x4 available=4x2 illegal=2x1 "},
    {APP_TYPE_HKRPG, kDrr, "drr base=8x4 base=6x3 available=4x2 "},
    {APP_TYPE_HP, kDrrIllegal, "interval=5 base=8x4 available=4x2 illegal=2x1 "},
    {YS, kMixed, "anisotropyOn anisotropy=2 sizeOn size=8x4 dynamicDfi "},
    {APP_TYPE_SGAME, kMixed, "dynamicDfi "},
    {APP_TYPE_PUBG, kMixed, "anisotropyOn anisotropy=2 "},
    {APP_TYPE_7, kMixed, ""},
};

// Catches a key that fills the wrong member, a wrong threshold or default, a malformed value that throws, is half
// applied or passes in silence, and keys that reach a game that they are not for.
TEST(Preferences, KeysFillTheirMembersOnly) {
    for (const Keys& keys : kKeys) {
        SCOPED_TRACE(std::to_string(keys.type) + " " + keys.configs);
        LogCapture log;
        OrvelPrefs prefs;
        read(prefs, keys.type, keys.configs);
        EXPECT_EQ(describe(prefs), keys.expected);
        const std::vector<std::string> errors = log.texts(ANDROID_LOG_ERROR);
        ASSERT_EQ(errors.size(), keys.error ? 1u : 0u) << testing::PrintToString(errors);
        if (keys.error) {
            EXPECT_THAT(errors[0], testing::HasSubstr("\"" + std::string(keys.error) + "\""));
        }
    }
}

// Catches texts that are not logged, in the wrong order, or when they were not given.
TEST(Preferences, LogTheListsTheyRead) {
    LogCapture log;
    OrvelPrefs prefs;
    read(prefs, YS,
         std::string(kDrrIllegal) +
             R"(,"orvel_sr_config":"8x4","orvel_sr_backbuffer_size_config":"1","max_resolution":"8x4")");
    EXPECT_THAT(log.texts(ANDROID_LOG_DEBUG), ElementsAre("ppl: ", "pph: ", "mr: 8x4", "mr80p: ", "dbs: 8x4",
                                                          "das: 4x2", "dis: 2x1", "sr: 8x4", "srbfsp: 1"));
    log.clear();
    prefs.queryParams(0);
    prefs.queryParams(16);
    const LogLine undefined{ANDROID_LOG_ERROR, "Undefined pararm commends"};
    EXPECT_THAT(log.lines(), ElementsAre(undefined, undefined));
}

// Catches an answer of the wrong shape that throws, that is passed over in silence, or that changes a member.
TEST(Preferences, RefuseWhatIsNoConfiguration) {
    OrvelSettings::getInstance().mApplicationType = YS;
    for (const std::string& answer :
         std::vector<std::string>{R"({"configs":{)", "\x01\xff", "3", "[1]", "{}", R"({"configs":"tex_size"})",
                                  R"({"configs":[]})", std::string(100000, '[')}) {
        LogCapture log;
        OrvelPrefs prefs;
        prefs.readFromRavelo(answer);
        EXPECT_EQ(describe(prefs), "") << answer.substr(0, 60);
        EXPECT_TRUE(prefs.mConfigs.isNull());
        EXPECT_EQ(log.texts(ANDROID_LOG_ERROR).size(), 1u) << answer.substr(0, 60);
    }
}

// Catches constants under the wrong width, an earlier item that wins, lists of unequal length that are paired, and
// sizes of an earlier answer that stay.
TEST(Preferences, DeriveUpscalingConstants) {
    OrvelPrefs prefs;
    read(prefs, YS, R"("post_process_low":"4x8;6x3;4x2","post_process_high":"8x16;12x6;16x4")");
    ASSERT_EQ(prefs.mPostProcessLowParams.size(), 2u);
    const auto expected = orvel::fsrEasuConstants(4, 2, 16, 4);
    EXPECT_THAT(prefs.mPostProcessLowParams.at(4), testing::ElementsAreArray(expected));
    EXPECT_EQ(prefs.mPostProcessLowParams.at(6)[0], 0.5f);

    OrvelPrefs unequal;
    read(unequal, YS, R"("post_process_low":"4x8;6x3","post_process_high":"8x16")");
    EXPECT_THAT(unequal.mPostProcessLowParams, IsEmpty());
    EXPECT_THAT(unequal.mAdaptSizes,
                ElementsAre(Pair(TEX_SIZE_POST_PROCESS_LOW, ElementsAre(TEX_SIZE{4, 8}, TEX_SIZE{6, 3})),
                            Pair(TEX_SIZE_POST_PROCESS_HIGH, ElementsAre(TEX_SIZE{8, 16}))));
    unequal.mConfigs.clear();
    unequal.queryParams(7);
    EXPECT_THAT(unequal.mAdaptSizes, IsEmpty());
}

} // namespace
