#include "app/games/sgame/OrvelSGameVRSModuleData.h"

#include "LogCapture.h"
#include "SGameShadingKeys.h"
#include "app/FrameworkProcess.h"
#include "app/VRSComponent.h"
#include "app/games/sgame/OrvelSGameProcessor.h"
#include "app/games/sgame/ShadingRateTemplates.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace android::orvel::app;
using namespace android::orvel::app::module;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Catches a malformed text that is taken for something, or that is complained about: the module just stays off.
TEST(ShadingParameters, AreUnusableWhenMalformed) {
    const std::map<std::string, std::vector<std::string>> texts = {
        {"vrs_LabelInfo", {"", "ground", "ground#", "#g", "ground#a#b", "ground#a;far"}},
        {"vrs_LabelLevel",
         {"", "1", "1#44:far", "1#44:far$", "1#$44", "1#44:far$44$44", "1#44:far#44$44", "x#44:far$44", "1#44$44",
          "1#44:far:ground$44", "1#x:far$44", "1#44:far$x", "99999999999#44:far$44", "1#44:far$44;2"}},
        {"vrs_MapInfo", {"1;2;3", "1;2;3;4;5", "1;x;3;4", "1;2;3;99999999999"}},
        {"vrs_MotionDetection", {"x"}},
    };
    const LogCapture log;
    for (const auto& [key, malformed] : texts) {
        for (const std::string& text : malformed) {
            EXPECT_FALSE(OrvelSGameVRSModuleData(shadingKeys({{key, text}})).valid) << key << ": " << text;
        }
    }
    for (const char* required : {"vrs_LabelInfo", "vrs_LabelLevel"}) {
        Json::Value json = shadingKeys();
        json.removeMember(required);
        EXPECT_FALSE(OrvelSGameVRSModuleData(json).valid) << required;
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

// Catches defaults that are lost or that stay, a class list taken as one pattern, and codes out of the table.
TEST(ShadingParameters, AreReadFromTheirTexts) {
    const OrvelSGameVRSModuleData defaults(shadingKeys({{"vrs_MapInfo", ""}, {"vrs_MotionDetection", ""}}));
    ASSERT_TRUE(defaults.valid);
    EXPECT_FLOAT_EQ(defaults.mMapRectY, 0.31f);
    EXPECT_FLOAT_EQ(defaults.mMapRectX, 0.051f);
    EXPECT_EQ(defaults.mTargetWidth, 2220);
    EXPECT_EQ(defaults.mTargetHeight, 932);
    EXPECT_EQ(defaults.mMVPUniformName, "hlslcc_mtx4x4unity_MatrixVP");
    EXPECT_FALSE(defaults.mMotionDetection);
    EXPECT_TRUE(defaults.IsMainColor("a_Main_color_b") && defaults.IsMap("pvp_5_small") && defaults.IsMap("pvp_melee"));
    EXPECT_FALSE(defaults.IsMap("pvp_55_small"));

    OrvelSGameVRSModuleData data(shadingKeys({
        {"vrs_LabelInfo", "map#own|other;fbo#scene;ground#g_.*|floor;far#f_.*"},
        {"vrs_LabelLevel", "1#44:far,12:ground,7:far$12,22,42,44,7;2#22:ground$12;-3#42:far$44"},
        {"vrs_MapInfo", "31;5;1280;720"},
        {"vrs_MVPMatrixLabel", "matrix"},
        {"vrs_MotionDetection", "1"},
    }));
    const OrvelSGameVRSModuleData copy = data;
    ASSERT_TRUE(copy.valid);
    EXPECT_EQ(copy.mMapRectY, 31); // whole numbers, whatever they mean as parts
    EXPECT_EQ(copy.mMapRectX, 5);
    EXPECT_EQ(copy.mTargetWidth, 1280);
    EXPECT_EQ(copy.mTargetHeight, 720);
    EXPECT_EQ(copy.mMVPUniformName, "matrix");
    EXPECT_TRUE(copy.mMotionDetection);
    EXPECT_TRUE(copy.IsMap("own") && copy.IsMap("other") && copy.IsMap("pvp_melee"));
    EXPECT_TRUE(copy.IsMainColor("scene") && !copy.IsMainColor("a_Main_color_b"));
    EXPECT_THAT(copy.GetRegionRates(1), ElementsAre(4, 5, 6, 10, 2));
    EXPECT_THAT(copy.GetRegionRates(9), IsEmpty());
    ASSERT_EQ(copy.FindLabelRates("f_g_"), 0); // in the place of the first, with the rate of the last
    ASSERT_EQ(copy.FindLabelRates("floor"), 2);
    EXPECT_EQ(copy.FindLabelRates("a floor"), -1);
    EXPECT_EQ(copy.mLabelRates[0].level1, GLenum(GL_SHADING_RATE_1X1_PIXELS_EXT));
    EXPECT_EQ(copy.mLabelRates[0].level2, 0u);
    EXPECT_EQ(copy.mLabelRates[2].level1, GLenum(GL_SHADING_RATE_1X2_PIXELS_EXT));
    EXPECT_EQ(copy.mLabelRates[2].level2, GLenum(GL_SHADING_RATE_2X2_PIXELS_EXT));
    EXPECT_EQ(copy.mDrawRates.at(-3).at(0).rate, GLenum(GL_SHADING_RATE_4X2_PIXELS_EXT));
}

// Catches a class that nobody defined and that ends more, or less, than its level; and a bad pattern that ends
// anything.
TEST(ShadingParameters, SurviveUnknownClassesAndBadPatterns) {
    const LogCapture log;
    const OrvelSGameVRSModuleData data(shadingKeys({
        {"vrs_LabelInfo", "far#f_.*|(|f;fbo#["},
        {"vrs_LabelLevel", "1#44:far,22:sky|far,x$44,22;2#42:far$12"},
    }));
    ASSERT_TRUE(data.valid);
    EXPECT_EQ(log.texts(ANDROID_LOG_ERROR).size(), 3u);
    EXPECT_TRUE(log.has(ANDROID_LOG_ERROR, "VMD no label match: sky"));
    ASSERT_EQ(data.FindLabelRates("f"), 2);
    EXPECT_EQ(data.mLabelRates[2].level1, GLenum(GL_SHADING_RATE_4X4_PIXELS_EXT));
    EXPECT_EQ(data.mLabelRates[2].level2, GLenum(GL_SHADING_RATE_4X2_PIXELS_EXT));
    EXPECT_THAT(data.GetRegionRates(1), IsEmpty());
    EXPECT_THAT(data.GetRegionRates(2), ElementsAre(4));
    EXPECT_TRUE(data.IsMainColor("Main_color"));
}

// ---- templates -----------------------------------------------------------------------------------------------------

struct Texel {
    int x, y;
    int two, three; // the ring in either template; 10 in the minimap
};

// Catches rings of the wrong extent or around the wrong point, a minimap in another corner or under a ring, and bytes
// outside the image.
TEST(ShadingTemplates, HaveRingsAndTheMinimap) {
    constexpr TemplateShape kUsual{277, 116, 0.051f, 0.31f};
    // Beside the ends of the axes: around (138, 58), 69 by 43.5; 46 by 33.8 and 92 by 53.2. Beside the minimap's edges.
    constexpr Texel kTexels[] = {
        {138, 58, 1, 1}, {207, 58, 1, 2},  {208, 58, 2, 2},   {68, 58, 2, 2},  {138, 101, 1, 2}, {138, 102, 2, 2},
        {138, 14, 2, 2}, {183, 58, 1, 1},  {185, 58, 1, 2},   {229, 58, 2, 2}, {231, 58, 2, 3},  {138, 91, 1, 1},
        {138, 92, 1, 2}, {138, 111, 2, 2}, {138, 112, 2, 3},  {0, 0, 2, 3},    {276, 115, 2, 3}, {15, 81, 10, 10},
        {14, 81, 2, 3},  {15, 80, 2, 3},   {50, 115, 10, 10}, {51, 115, 2, 3}};
    for (const TemplateShape& shape : {kUsual, TemplateShape{5, 3, 0.15f, 0.5f}, TemplateShape{1, 1, 31, 5}}) {
        const size_t size = static_cast<size_t>(shape.width * shape.height);
        std::vector<uint8_t> two(size + 1, 99);
        std::vector<uint8_t> three(size + 1, 99);
        fillTwoRings(two.data(), shape, 1, 2);
        fillThreeRings(three.data(), shape, 1, 2, 3);
        EXPECT_EQ(two[size] + three[size], 2 * 99);
        EXPECT_EQ(std::count(two.begin(), two.end(), 99) + std::count(three.begin(), three.end(), 99), 2);
        for (const Texel& texel : kTexels) {
            if (shape.width == kUsual.width) {
                const auto at = static_cast<size_t>(texel.y * shape.width + texel.x);
                EXPECT_EQ(two[at], texel.two) << texel.x << ", " << texel.y;
                EXPECT_EQ(three[at], texel.three) << texel.x << ", " << texel.y;
            }
        }
    }
}

// ---- parameters that go --------------------------------------------------------------------------------------------

// Catches (under the sanitizers) a module that reads parameters which the application's question for a function frees.
TEST(ShadingParameters, MayGoWhileProcessorsAreMade) {
    auto& data = beFramework(android::APP_TYPE_SGAME, 1);
    data.InitProcessorModuleData(1, shadingKeys());
    data.ColloctModuleExtensionFunctions();
    std::atomic<int> withModule{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 2; ++thread) {
        threads.emplace_back([&] {
            while (!stop) {
                OrvelSGameProcessor processor;
                processor.OnBegin();
                withModule += processor.GetGLModule(1) != nullptr;
                processor.FrameEnd(); // of what was copied
                processor.OnEnd();
            }
        });
    }
    for (int i = 0; i < 100'000 && withModule < 20; ++i) {
        data.RemoveExtensionFunction("glUnknown");
    }
    data.RemoveExtensionFunction("glShadingRateEXT");
    stop = true;
    for (std::thread& each : threads) {
        each.join();
    }
    OrvelSGameProcessor late;
    late.OnBegin();
    EXPECT_EQ(late.GetGLModule(1), nullptr);
    late.OnEnd();
}

} // namespace
