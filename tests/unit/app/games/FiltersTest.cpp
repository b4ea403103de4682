// When the games' filters are drawn, and what they leave behind.
#include "LogCapture.h"
#include "PlayedGame.h"
#include "app/games/pubg/OrvelPUBGProcessor.h"
#include "app/games/sgame/OrvelSGameFilterModuleData.h"
#include "app/games/sgame/OrvelSGameProcessor.h"

#include <gmock/gmock.h>

#include <map>

using namespace android;
using namespace android::orvel;
using namespace android::orvel::app;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** Frames of one scene, events and what is drawn, as drawn() tells it. */
struct Filtered {
    int scene; // of the frame before, and reported at this one's end
    const char* events;
    const char* drawn;
};

// ---- SGame ---------------------------------------------------------------------------------------------------------

/** Plays events, one character each; the lobby was seen, so that its matches are filtered. */
class SGame : public PlayedGame {
public:
    SGame() : PlayedGame(APP_TYPE_SGAME, 2, kFilter, "lobby:lobby;battle:battle#x#2") {
        swap(102);
        EXPECT_FALSE(state().GetEffectManager()->IsLoadResourceEnabled()) << "before the lobby";
        loadFilter(4);
        for (const auto& [texture, label] : kLabels) {
            gl().glLabelObjectEXT(GL_TEXTURE, texture, 0, label);
        }
        play("L");
        swap(4);
        driver().forget();
    }

    OrvelSGameProcessor& state() { return processor<OrvelSGameProcessor>(); }

    void play(const char* events) {
        for (; *events; ++events) {
            play(*events);
        }
    }

private:
    static inline const std::map<GLuint, const char*> kLabels = {{'L', "lobby"}, {'B', "battle"}, {'S', "skip_1"},
                                                                 {'T', "s"},     {'R', "result"}, {'n', "no result"}};

    void play(char event) {
        switch (event) {
        case 'd':
            return draw();
        case 'c':
            return gl().glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        case 'x': {
            const GLuint textures[] = {'S', 0, 'R'};
            return gl().glDeleteTextures(3, textures);
        }
        default:
            return gl().glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(event));
        }
    }
};

const Filtered kSGame[] = {
    {102, "dddcdd", "dddFdd|"},                                   // once, before the interface
    {102, "ddd", "dddF|"},                                        // at the end, if the interface was not found
    {102, "dd", "dd|"},                                           // not in a light frame
    {102, "dddcSdd", "ddddFd|"}, {102, "dddcSTdSdd", "dddddFd|"}, // each skip lasts for one draw
    {102, "dddcSd", "ddddF|"},   {102, "dddcnd", "dddFd|"},
    {102, "dddScd", "dddFd|"},                              // bound before the interface
    {102, "dddcR", "dddF|"},     {102, "Rddd", "ddd|"},     // a result screen is no scene
    {6, "dddcd", "dddFd|"},      {6, "dddSdcd", "ddddFd|"}, // skipped in the hero selection only
    {5, "dddcd", "dddFd|"},      {5, "ddd", "ddd|"},
    {7, "dddRcd", "dddFd|"},     {7, "Rddd", "dddF|"}, // not looked for in the service's battle
    {102, "xRddd", "dddF|"},                           // deleted: no result any more
    {102, "dddcSd", "dddFd|"},
};

// Catches a filter over the interface, a second one, none, or one in the wrong frame.
TEST(SGameFilter, IsDrawnOnceBeforeTheInterface) {
    SGame game;
    ASSERT_TRUE(game.state().GetEffectManager()->EnableRender());
    game.play("dddcd");
    game.swap(102);
    EXPECT_EQ(game.drawn(), "dddd|") << "in the lobby";
    for (const Filtered& row : kSGame) {
        SCOPED_TRACE(row.events);
        game.play("ddd");
        game.swap(row.scene);
        game.driver().forget();
        game.play(row.events);
        game.swap(row.scene);
        EXPECT_EQ(game.drawn(), row.drawn);
    }
}

// Catches a result screen that ends no battle, or one outside a battle that ends something.
TEST(SGameFilter, TellsOfResultScreens) {
    SGame game;
    const auto statusAfter = [&](const char* events, int scene) {
        game.play(events);
        game.swap(scene);
        return game.state().SceneStatus();
    };
    EXPECT_EQ(statusAfter("dddB", 4), kStatusBattle);
    EXPECT_EQ(statusAfter("dddn", 4), kStatusBattle);
    EXPECT_EQ(statusAfter("dddR", 4), kStatusLobby);
    EXPECT_EQ(statusAfter("ddd", 102), kStatusHeroSelect);
    EXPECT_EQ(statusAfter("dddR", 102), kStatusHeroSelect);
}

/** @return the calls that change state which shows in the filter, and the filter's draw */
Calls changesAround(const RecordingDriver& driver) {
    return driver.callsOf({"glEnable(", "glDisable(", "glColorMask(", "glDrawArrays(4, 0, 3)"});
}

// Catches a colour mask that swallows the filter or is not put back, and one that is touched without need.
TEST(SGameFilter, AtTheFramesEndWritesAllColors) {
    SGame game;
    game.play("ddd");
    game.swap(102);
    for (const std::array<GLint, 4> mask : {std::array<GLint, 4>{0, 0, 0, 0}, {1, 0, 1, 1}, {1, 1, 1, 1}}) {
        game.driver().answer<&next::GlTable::glGetIntegerv>([mask](GLenum name, GLint* values) {
            if (name == GL_COLOR_WRITEMASK) {
                std::copy(mask.begin(), mask.end(), values);
            }
        });
        game.play("ddd");
        game.driver().forget();
        game.swap(102);
        Calls expected = {call("glDrawArrays", GL_TRIANGLES, 0, 3)};
        if (mask != std::array<GLint, 4>{1, 1, 1, 1}) {
            expected.insert(expected.begin(), call("glColorMask", 1, 1, 1, 1));
            expected.push_back(call("glColorMask", mask[0], mask[1], mask[2], mask[3]));
        }
        EXPECT_EQ(changesAround(game.driver()), expected);
    }
}

// Catches a capability that shows in the filter, is switched without need, or is not put back in order.
TEST(SGameFilter, SwitchesOffWhatIsOn) {
    SGame game;
    game.play("ddd");
    game.swap(102);
    game.driver().answer<&next::GlTable::glIsEnabled>([](GLenum cap) { return cap != GL_STENCIL_TEST; });
    game.play("dddc");
    game.driver().forget();
    game.play("d");
    EXPECT_THAT(changesAround(game.driver()),
                ElementsAre(call("glDisable", GL_BLEND), call("glDisable", GL_DEPTH_TEST),
                            call("glDisable", GL_SCISSOR_TEST), call("glDrawArrays", GL_TRIANGLES, 0, 3),
                            call("glEnable", GL_BLEND), call("glEnable", GL_DEPTH_TEST),
                            call("glEnable", GL_SCISSOR_TEST)));
}

module::OrvelSGameFilterModuleData filterData(const char* text) {
    Json::Value json;
    std::istringstream(text) >> json;
    return module::OrvelSGameFilterModuleData(json);
}

// Catches parameters that are read from another part, or refused although they are usable.
TEST(SGameFilterData, ReadsItsParts) {
    const std::pair<const char*, const char*> rows[] = {
        {kFilter, "000 types 1 1 1 1 1 period 1 skips 2 results result.* result_.*"},
        {R"({"effect_Binary":"1;0;-2"})", "101 types period 10 skips 0 results"},
        {R"({"effect_Binary":"1;0;2;16;a|a|(;b|b","effect_Types":"8;0;7;6;5;4"})",
         "101 types 8 7 6 5 4 period 10 skips 2 results b"},
        {R"({"effect_Binary":"1;;0;;2;15"})", "101 types period 15 skips 0 results"}, // empty parts vanish
        {R"({"effect_Binary":"1;0;2;-1"})", "101 types period 10 skips 0 results"},
    };
    for (const auto& [json, expected] : rows) {
        const auto data = filterData(json);
        ASSERT_TRUE(data.valid) << json;
        std::ostringstream text;
        for (const bool isBinary : data.effectBinary) {
            text << isBinary;
        }
        text << " types";
        for (const uint32_t type : data.effectTypes) {
            text << ' ' << type;
        }
        text << " period " << data.checkPeriod << " skips " << data.skipTextures.size() << " results";
        for (const std::string& result : data.resultPatterns) {
            text << ' ' << result;
        }
        EXPECT_EQ(text.str(), expected) << json;
    }
}

// Catches unusable parameters that are kept, or refused without a line, or with more than one, that shows them.
TEST(SGameFilterData, SaysWhatIsUnusable) {
    const std::string binary = "configuration of \"effect_Binary\" is malformed: ";
    const std::string types = "configuration of \"effect_Types\" is malformed: ";
    const std::pair<const char*, Calls> rows[] = {
        {R"({"effect_Binary":"1;0;x"})", {binary + "\"1;0;x\""}},
        {R"({"effect_Binary":"1;0"})", {binary + "\"1;0\""}},
        {R"({"effect_Binary":{}})", {binary + "no text"}},
        {R"({"effect_Types":"1;2;3;4;5"})", {}},                              // there is none
        {R"({"effect_Binary":"1;0;1","effect_Types":""})", {types + "\"\""}}, // not the same as none
        {R"({"effect_Binary":"1;0;1","effect_Types":"1;2;3;4;5;9"})", {types + "\"1;2;3;4;5;9\""}},
        {R"({"effect_Binary":"1;0;1","effect_Types":"1;2;3;4;5;x"})", {types + "\"1;2;3;4;5;x\""}},
    };
    for (const auto& [json, lines] : rows) {
        SCOPED_TRACE(json);
        const LogCapture log;
        EXPECT_FALSE(filterData(json).valid);
        EXPECT_EQ(log.texts(ANDROID_LOG_ERROR), lines);
    }
    EXPECT_FALSE(filterData(R"({"effect_Binary":""})").valid);
}

// ---- PUBG ----------------------------------------------------------------------------------------------------------

/** Plays events, one character each; scene 6 was reported. */
class Pubg : public PlayedGame {
public:
    static constexpr GLuint kSceneTarget = 9;

    explicit Pubg(uint32_t modules = 2) : PlayedGame(APP_TYPE_PUBG, modules, kFilter) {
        gl().glLabelObjectEXT(GL_TEXTURE, 'S', 0, "SceneColorMobile");
        gl().glLabelObjectEXT(GL_TEXTURE, 'n', 0, "xSceneColorMobile");
        gl().glLabelObjectEXT(GL_TEXTURE, 'H', 0, "T_CrossHairNormal");
        gl().glLabelObjectEXT(GL_TEXTURE, 'L', 0, "LoadingUI_Atlas");
        gl().glLabelObjectEXT(GL_BUFFER_OBJECT_EXT, 'b', 0, "T_CrossHairNormal");
        play("s");
        attach(GL_COLOR_ATTACHMENT0, 'S');
        play("o");
        attach(GL_DEPTH_ATTACHMENT, 'S');
        attach(GL_COLOR_ATTACHMENT0, 'n');
        swap(6);
        driver().forget();
    }

    void play(const char* events) {
        for (; *events; ++events) {
            play(*events);
        }
    }

private:
    void attach(GLenum attachment, GLuint texture) {
        gl().glFramebufferTexture2DMultisampleEXT(GL_FRAMEBUFFER, attachment, GL_TEXTURE_2D, texture, 0, 4);
    }

    void play(char event) {
        static constexpr GLenum kDiscarded[] = {GL_COLOR, GL_DEPTH};
        switch (event) {
        case 'd':
            return gl().glDrawElements(GL_TRIANGLES, kGamesVertices, GL_UNSIGNED_SHORT, nullptr);
        case 'i':
            return gl().glDrawElementsInstanced(GL_TRIANGLES, kGamesVertices, GL_UNSIGNED_SHORT, nullptr, 1);
        case '0': // the screen
            return gl().glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
        case 's': // the scene
            return gl().glBindFramebuffer(GL_FRAMEBUFFER, kSceneTarget);
        case 'o': // another target
            return gl().glBindFramebuffer(GL_FRAMEBUFFER, 8);
        case 'r':
            return gl().glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
        case '+':
            return gl().glEnable(GL_BLEND);
        case '-':
            return gl().glDisable(GL_DEPTH_TEST);
        case 'a':
            return gl().glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ZERO);
        case 'z':
            return gl().glDiscardFramebufferEXT(GL_FRAMEBUFFER, 2, kDiscarded);
        case 'Z':
            return gl().glDiscardFramebufferEXT(GL_FRAMEBUFFER, 1, kDiscarded);
        default:
            return gl().glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(event));
        }
    }
};

using Frames = std::vector<Filtered>; // here the scene is reported at the frame's end

const Frames kPubg[] = {
    {{6, "d0d+-azdid", "ddFdid|"}},
    {{6, "0+-azid", "Fid|"}},
    // The pattern: nothing missing, nothing more, in order where order counts.
    {{6, "0-azd", "d|"}},
    {{6, "0+azd", "d|"}},
    {{6, "0a+-zd", "d|"}}, // blending is switched on behind the function
    {{6, "0+-ad", "d|"}},
    {{6, "0+-aZd", "d|"}},
    {{6, "r+-azd", "d|"}},
    {{6, "0", "|"}, {6, "+-az0d", "d|"}}, // a new frame has nothing bound
    {{6, "0+-azsssszd", "d|"}},           // both patterns at once
    // The scene's target counts, and hits, from frame to frame.
    {{6, "sss0+-ad", "d|"},
     {6, "s0+-ad", "Fd|"},
     {6, "s0+-ad", "Fd|"},
     {6, "0+-ad", "d|"},
     {6, "s0+-ad", "Fd|"},
     {6, "0d", "d|"},
     {6, "s0+-ad", "d|"}},
    {{6, "ss0+-azd", "Fd|"}, {6, "sss0+-ad", "d|"}, {6, "s0+-ad", "Fd|"}}, // the first pattern begins to count anew
    {{6, "oooo0+-ad", "d|"}},
    {{111, "", "|"}, {111, "sss", "|"}, {6, "", "|"}, {6, "s0+-ad", "Fd|"}}, // counted without the filter, too
    // Textures.
    {{6, "dHdd", "dFdd|"}},
    {{6, "nbd", "d|"}},
    {{6, "LHd", "d|"}, {6, "Hd", "d|"}, {6, "Hd", "Fd|"}},
    {{6, "HLd", "Fd|"}, {6, "Hd", "d|"}},
    {{6, "L0+-azd", "d|"}},
    // Scenes.
    {{5, "Hd", "Fd|"},
     {6, "Hd", "d|"},
     {1000, "Hd", "Fd|"},
     {1001, "Hd", "Fd|"},
     {111, "Hd", "d|"},
     {6, "Hd", "d|"},
     {6, "Hd", "Fd|"}},
    {{5, "", "|"}, {5, "ssss", "|"}, {6, "ssss", "|"}, {6, "s0+-ad", "d|"}},
    // Without a sign: at the end of a frame with enough indexed draws.
    {{6, "dddddddddd", "dddddddddd|"}, {6, "ddddddddddi", "ddddddddddiF|"}},
    {{6, "dddddddddd", "dddddddddd|"}, {6, "d", "d|"}},
    {{6, "dddddddddddL", "ddddddddddd|"}},
    {{6, "dddddddddddHd", "dddddddddddFd|"}, {6, "dddddddddddH", "ddddddddddd|"}},
};

class PubgFilter : public testing::TestWithParam<Frames> {};

// Catches a filter over the display, a second one, none, or one in the wrong frame.
TEST_P(PubgFilter, IsDrawnOnceBeforeTheDisplay) {
    Pubg game;
    game.loadFilter(6);
    for (const Filtered& frame : GetParam()) {
        SCOPED_TRACE(frame.events);
        game.play(frame.events);
        game.swap(frame.scene);
        std::string drawn = frame.drawn;
        std::replace(drawn.begin(), drawn.end(), 'i', 'd');
        EXPECT_EQ(game.drawn(), drawn);
    }
}
INSTANTIATE_TEST_SUITE_P(Stories, PubgFilter, testing::ValuesIn(kPubg));

// Catches a capability that shows in the filter or is not put back.
TEST(PubgFilterState, IsPutBackAsItWas) {
    Pubg game;
    game.loadFilter(6);
    game.driver().answer<&next::GlTable::glIsEnabled>([](GLenum cap) { return cap == GL_CULL_FACE; });
    game.play("Hd");
    EXPECT_THAT(changesAround(game.driver()),
                ElementsAre(call("glDisable", GL_BLEND), call("glDisable", GL_SCISSOR_TEST),
                            call("glDisable", GL_CULL_FACE), call("glDrawArrays", GL_TRIANGLES, 0, 3),
                            call("glDisable", GL_BLEND), call("glDisable", GL_SCISSOR_TEST),
                            call("glEnable", GL_CULL_FACE)));
}

// Catches a processor that watches for nobody.
TEST(PubgFilterState, IsIdleWithoutAFilterModule) {
    Pubg game(1);
    game.swap(6);
    game.play("H");
    auto& processor = game.processor<OrvelPUBGProcessor>();
    EXPECT_FALSE(processor.DrawNow());
    EXPECT_EQ(processor.GetEffectManager(), nullptr);
    EXPECT_FALSE(processor.EnableEffectManagerLoadResource());
}

} // namespace
