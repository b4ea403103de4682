// What the games' processors and modules write into the loader's table.
#include "EveryEntry.h"
#include "PlayedGame.h"
#include "app/OrvelModuleBase.h"
#include "app/games/sgame/OrvelSGameProcessor.h"

#include <gmock/gmock.h>

using namespace android;
using namespace android::orvel;
using testing::ElementsAre;
using testing::UnorderedElementsAreArray;

namespace {

const Calls kSGame = {"glBindFramebuffer", "glClear",         "glDrawElements", "glBindTexture", "glLabelObjectEXT",
                      "glDeleteTextures",  "glDeleteProgram", "glColorMask",    "glUseProgram"};
const Calls kSGameShading = {"glDrawArrays",
                             "glDrawElementsInstanced",
                             "glDrawArraysInstanced",
                             "glFramebufferTexture2D",
                             "glFramebufferTexture2DMultisampleEXT",
                             "glUniform4fv"};
const Calls kSGameFilter = {"glDrawArraysInstanced", "glDrawArrays", "glDrawElementsInstanced"};
const Calls kPubg = {"glEnable",
                     "glDisable",
                     "glBindTexture",
                     "glDiscardFramebufferEXT",
                     "glBlendFuncSeparate",
                     "glLabelObjectEXT",
                     "glBindFramebuffer",
                     "glFramebufferTexture2DMultisampleEXT"};
const Calls kPubgFilter = {"glDrawElements", "glDrawElementsInstanced"};

constexpr char kAll[] = R"({"effect_Binary":"0;0;0","vrs_LabelInfo":"a#x","vrs_LabelLevel":"1#44:a$2,2,2,2"})";

struct Hooked {
    OrvelApplicationType type;
    uint32_t modules;
    std::vector<Calls> entries;
};
void PrintTo(const Hooked& row, std::ostream* out) { *out << "type " << row.type << " modules " << row.modules; }

class GameHooks : public testing::TestWithParam<Hooked> {};

// Catches a game that gets another one's processor or modules, an entry that is not hooked, is hooked for nothing,
// leads to another one, or does not reach the driver once.
TEST_P(GameHooks, AreThoseOfProcessorAndModules) {
    PlayedGame game(GetParam().type, GetParam().modules, kAll);
    auto& processor = game.processor<app::OrvelProcessorBase>();
    EXPECT_EQ(processor.GetProcessorId(), uint32_t(GetParam().type));
    for (const uint32_t id : {1u, 2u, 4u, kSharedShading}) {
        const auto* found = processor.GetGLModule(id);
        const uint32_t known = GetParam().type < APP_TYPE_7 ? ~0u : kSharedShading;
        EXPECT_EQ(found ? found->GetModuleId() : 0, GetParam().modules & known & id);
    }
    app::RegisterProcessorModuleGlobalGLHooks(1u << 20, game.driver().connection()); // of no module
    Calls expected;
    for (const Calls& entries : GetParam().entries) {
        expected.insert(expected.end(), entries.begin(), entries.end());
    }
    std::sort(expected.begin(), expected.end());
    expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
    Calls hooked;
    for (const Entry& entry : kEntries) {
        if (entry.isHooked(game.gl())) {
            hooked.push_back(entry.name);
            game.driver().forget();
            const std::string made = entry.call(game.gl());
            EXPECT_THAT(game.driver().calls(), ElementsAre(made));
        }
    }
    EXPECT_THAT(hooked, UnorderedElementsAreArray(expected));
}
INSTANTIATE_TEST_SUITE_P(Games, GameHooks,
                         testing::Values(Hooked{APP_TYPE_SGAME, 1, {kSGame, kSGameShading}},
                                         Hooked{APP_TYPE_SGAME, 2, {kSGame, kSGameFilter}},
                                         Hooked{APP_TYPE_SGAME, 3, {kSGame, kSGameShading, kSGameFilter}},
                                         Hooked{APP_TYPE_SGAME, kSharedShading, {kSGame}},
                                         Hooked{APP_TYPE_PUBG, 1 | kSharedShading, {kPubg}},
                                         Hooked{APP_TYPE_PUBG, 1 | 2 | kSharedShading, {kPubg, kPubgFilter}},
                                         Hooked{APP_TYPE_PUBG, 2, {kPubg, kPubgFilter}},
                                         Hooked{APP_TYPE_7, 1 | 2 | kSharedShading, {}},
                                         Hooked{APP_TYPE_BILI, kSharedShading, {}}));

// Catches a module that works although its parameters are missing, effects that are made for nobody, and effects that
// go with the modules: they go with the processor.
TEST(GameProcessor, LeavesOutModulesThatAreNotValid) {
    const auto driver = RecordingDriver::installed();
    auto& data = beFramework(APP_TYPE_SGAME, 1 | 2);
    const auto play = [](bool hasFilter) {
        auto* const processor = app::CreateGLProcessor();
        processor->OnBegin();
        EXPECT_EQ(processor->GetGLModule(1), nullptr);
        EXPECT_EQ(processor->GetGLModule(2) != nullptr, hasFilter);
        processor->OnEnd();
        EXPECT_EQ(processor->GetGLModule(2), nullptr);
        EXPECT_EQ(processor->GetEffectManager() != nullptr, hasFilter);
        app::ReleaseGLProcessor(processor);
    };
    play(false);
    Json::Value filter;
    std::istringstream(kFilter) >> filter;
    data.InitProcessorModuleData(2, filter);
    play(true);
}

// Catches a processor that takes another game's configuration for its own.
TEST(GameProcessor, StandsAForeignConfiguration) {
    const auto driver = RecordingDriver::installed();
    beFramework(APP_TYPE_PUBG, 2);
    app::OrvelSGameProcessor processor;
    EXPECT_EQ(processor.DrawCountThreshold(), 5u);
    processor.GlLabelObjectEXTHooked(GL_TEXTURE, 1, 0, "lobby");
    processor.GlBindTextureHooked(GL_TEXTURE_2D, 1);
    processor.FrameEnd();
    EXPECT_EQ(processor.SceneStatus(), app::kStatusUnknown);
}

} // namespace
