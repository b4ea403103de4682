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
#include <cmath>
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

// Catches a class that nobody defined and that ends more, or less, than its level; and a bad pattern that ends anything.
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

constexpr int kOnTheEdge = -1;

/** @return 0 in the minimap, the ring from 1, or kOnTheEdge, where rounding decides */
int ringAt(const TemplateShape& shape, const std::vector<std::pair<double, double>>& ellipses, int x, int y) {
    const double left = double{shape.mapRectX} * shape.width;
    const double side = double{shape.mapRectY} * shape.height;
    double edge = 1;
    for (const double distance : {x - left, x - left - side, y - (shape.height - side)}) {
        edge = std::min(edge, std::abs(distance));
    }
    int ring = 1;
    for (const auto& [a, b] : ellipses) {
        const double distance = a * b == 0 ? 2 : std::hypot((x - shape.width / 2) / a, (y - shape.height / 2) / b);
        edge = std::min(edge, std::abs(distance - 1));
        ring += distance > 1;
    }
    if (edge < 1e-4) {
        return kOnTheEdge;
    }
    return x > left && x < left + side && y > shape.height - side ? 0 : ring;
}

// Catches rings of the wrong extent or around the wrong point, a minimap in another corner or under a ring, and bytes
// outside the image.
TEST(ShadingTemplates, HaveRingsAndTheMinimap) {
    constexpr uint8_t kCodes[] = {10, 1, 2, 3};
    const TemplateShape shapes[] = {{277, 116, 0.051f, 0.31f}, {160, 90, 0, 0},     {33, 64, 0.51f, 0.26f},
                                    {277, 116, 31, 5},         {5, 3, 0.15f, 0.5f}, {1, 1, 0.5f, 0}};
    for (const TemplateShape& shape : shapes) {
        const double x = shape.width / 2;
        const double y = shape.height / 2;
        const size_t size = static_cast<size_t>(shape.width * shape.height);
        std::vector<uint8_t> two(size + 1, 99);
        std::vector<uint8_t> three(size + 1, 99);
        fillTwoRings(two.data(), shape, 1, 2);
        fillThreeRings(three.data(), shape, 1, 2, 3);
        EXPECT_EQ(two[size] + three[size], 2 * 99);
        int edges = 0;
        for (size_t i = 0; i < size; ++i) {
            const int column = static_cast<int>(i) % shape.width;
            const int row = static_cast<int>(i) / shape.width;
            const int ofTwo = ringAt(shape, {{x / 2, 0.75 * y}}, column, row);
            const int ofThree = ringAt(shape, {{x / 3, y / 3 + y / 4}, {2 * x / 3, y / 4 + 2 * y / 3}}, column, row);
            edges += ofTwo == kOnTheEdge || ofThree == kOnTheEdge;
            ASSERT_TRUE(ofTwo == kOnTheEdge || two[i] == kCodes[ofTwo]) << column << ", " << row;
            ASSERT_TRUE(ofThree == kOnTheEdge || three[i] == kCodes[ofThree]) << column << ", " << row;
        }
        EXPECT_LE(edges, shape.width + shape.height);
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
    while (withModule < 20) {
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
