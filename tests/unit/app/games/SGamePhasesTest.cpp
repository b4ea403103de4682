// The SGame processor: phases of the game from frame to frame, flags within a frame, its payload.
#include "LogCapture.h"
#include "PlayedGame.h"
#include "app/games/sgame/OrvelSGameData.h"
#include "app/games/sgame/OrvelSGameProcessor.h"

#include <gmock/gmock.h>

using namespace android;
using namespace android::orvel::app;
using testing::ElementsAre;

namespace {

constexpr char kPayload[] = "lobby:L;pick_hero:H.*;pick_hero-UI:h|x;other-UI:[o];battle:.*B;battle-UI:b|L#p|clear.*";

/** Plays events, one character each. Every texture and the program p is named and labelled with its own character. */
class SGame : public PlayedGame {
public:
    explicit SGame(const char* payload = kPayload) : PlayedGame(APP_TYPE_SGAME, 2, kFilter, payload) { play("l"); }

    OrvelSGameProcessor& state() { return processor<OrvelSGameProcessor>(); }

    void play(const std::string& events) {
        for (const char event : events) {
            play(event);
        }
    }

private:
    void label(GLenum type, char name) { gl().glLabelObjectEXT(type, static_cast<GLuint>(name), 1, &name); }
    void mask(GLboolean value) { gl().glColorMask(value, value, value, value); }

    void play(char event) {
        switch (event) {
        case 'd': // a draw
            return draw();
        case 'D': // more draws than the threshold
            return play("dddddd");
        case 'c':
            return gl().glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        case 'C':
            return gl().glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT | GL_COLOR_BUFFER_BIT);
        case 'p':
            return gl().glUseProgram('p');
        case '-':
            return mask(GL_FALSE);
        case '+':
            return mask(GL_TRUE);
        case '~': // true, but not 1
            return mask(255);
        case '1': // not the screen
            return gl().glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 1);
        case '0':
            return gl().glBindFramebuffer(GL_FRAMEBUFFER, 0);
        case 'r': // not where draws go
            return gl().glBindFramebuffer(GL_READ_FRAMEBUFFER, 1);
        case '!':
            return state().ForceLobby();
        case 'l': // label everything
            for (const char texture : {'L', 'H', 'h', 'o', 'B', 'b'}) {
                label(GL_TEXTURE, texture);
            }
            return label(GL_PROGRAM_OBJECT_EXT, 'p');
        case 'x': { // delete everything
            const GLuint all[] = {'L', 'H', 'h', 0, 'o', 'B', 'b'};
            gl().glDeleteTextures(std::size(all), all);
            return gl().glDeleteProgram('p');
        }
        default: // bind a texture
            return gl().glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(event));
        }
    }
};

struct Frame {
    int scene; // what the service reports at its end
    const char* events;
    int32_t status; // after it
    uint32_t flags;
};

struct Story {
    const char* name;
    std::vector<Frame> frames;
    std::vector<std::string> debug = {};
};
void PrintTo(const Story& story, std::ostream* out) { *out << story.name; }

constexpr uint32_t kLatched = kSceneLobbyLatched;
constexpr uint32_t kMatch = kSceneInMatch;
constexpr uint32_t kBoth = kLatched | kMatch;

const Story kStories[] = {
    {"service only",
     {{0, "", 0, 0},
      {4, "", 1, 0},
      {102, "D", 2, kMatch},
      {101, "D", 1, 0},
      {6, "D", 4, kMatch},
      {8, "D", 8, kMatch},
      {777, "D", 0, kMatch},
      {102, "", 2, kMatch},
      {4, "", 1, 0}}},
    {"lobby texture on a light frame, at its threshold", {{0, "DL", 0, kLatched}, {0, "ddLddd", 1, kLatched}}},
    {"match by textures, lobby by texture",
     {{0, "L", 1, kLatched},
      {0, "DHB", 2, kBoth},
      {0, "HBob", 2, kBoth},
      {0, "L", 1, kLatched},
      {0, "B", 8, kBoth},
      {0, "L", 8, kBoth},
      {0, "L", 8, kBoth}}},
    {"textures off the screen, unlabelled and deleted ones",
     {{0, "1L", 0, 0}, {0, "L", 0, 0}, {0, "0xLH", 0, 0}, {0, "lrLx", 1, kLatched}, {0, "lrxH", 1, kLatched}}},
    {"a battle of the service ends with a lobby texture's second light frame",
     {{7, "D", 8, kMatch}, {7, "DL", 8, kMatch}, {7, "L", 8, kMatch}, {7, "DL", 8, kBoth}, {7, "L", 1, kLatched}}},
    {"or with a light frame under another scene", {{7, "D", 8, kMatch}, {999, "", 1, 0}}},
    {"but not with the lobby's scene",
     {{7, "D", 8, kMatch}, {4, "D", 8, kMatch}, {4, "D", 8, kMatch}, {4, "", 1, 0}},
     {"tbge"}},
    {"a scene that changes together with a switch is lost",
     {{0, "L", 1, kLatched}, {5, "H", 2, kBoth}, {5, "D", 2, kBoth}, {6, "D", 4, kBoth}}},
    {"labels of textures are ignored in the service's battles",
     {{8, "Dx", 8, kMatch},
      {8, "Dl", 8, kMatch},
      {102, "D", 2, kMatch},
      {102, "L", 2, kMatch},
      {102, "lL", 1, kLatched}}},
    {"forced out of a match", {{102, "D", 2, kMatch}, {102, "D!", 1, 0}, {102, "D", 1, 0}}},
    {"forced under the battle's own scene: consumed", {{7, "D", 8, kMatch}, {7, "!", 8, kMatch}, {7, "D", 8, kMatch}}},
    {"forced when the service has left the battle",
     {{7, "D", 8, kMatch}, {4, "D", 8, kMatch}, {4, "D!", 1, 0}},
     {"tbge"}},
    {"forced out of a battle by texture",
     {{0, "L", 1, kLatched}, {0, "B", 8, kBoth}, {5, "D!", 1, kLatched}, {5, "D", 1, kLatched}}},
};

class SGamePhases : public testing::TestWithParam<Story> {};

// Catches a phase that is entered or left too early, too late or by the wrong sign, and flags that do not follow.
TEST_P(SGamePhases, FollowTheStory) {
    SGame game;
    const LogCapture log;
    int number = 0;
    for (const Frame& frame : GetParam().frames) {
        game.play(frame.events);
        game.swap(frame.scene);
        EXPECT_EQ(game.state().SceneStatus(), frame.status) << "frame " << number;
        EXPECT_EQ(game.state().SceneFlags(), frame.flags) << "frame " << number;
        EXPECT_EQ(game.state().CurSceneId(), frame.scene);
        ++number;
    }
    EXPECT_EQ(log.texts(ANDROID_LOG_DEBUG), GetParam().debug);
}
INSTANTIATE_TEST_SUITE_P(Stories, SGamePhases, testing::ValuesIn(kStories));

// Catches an interface pass that is found too early, too late or on the wrong sign, and draws on the wrong account.
TEST(SGameDrawFlags, FollowClearsMasksAndTextures) {
    struct Row {
        int scene; // of the frame before
        const char* events;
        uint32_t flags;
        uint32_t sceneDraws;
    };
    const Row rows[] = {
        {0, "", 4, 0},        {0, "ddddd", 4, 5},
        {0, "Dcd", 5, 6},     {0, "dddddcd", 4, 5}, // not more draws than the threshold
        {0, "DC", 4, 6},                            // another clear
        {0, "D1c0", 4, 6},                          // of another target
        {0, "Dc-", 1, 6},                           // the scene's end masks colours
        {0, "Dc-+", 5, 6},                          //
        {0, "Dc-~", 1, 6},                          //
        {0, "Dcd-", 5, 6},                          // the interface may
        {0, "Dp-d+", 5, 6},                         // the game's own clear; its draw is the interface's
        {0, "Dp-d~", 4, 6},                         //
        {0, "Dpd-+d", 4, 8},                        // the program drew something before the masking
        {0, "pD-+", 4, 6},                          //
        {0, "dp-d+", 4, 2},                         // a light frame
        {0, "Dxp-+l", 4, 6},                        // the program is gone
        {102, "h", 6, 0},                           // hero selection
        {102, "hD-", 2, 6},                         // "or more" includes 6
        {102, "o", 4, 0},                           // known and never asked for
        {7, "b", 6, 0},                             // battle
        {7, "h", 4, 0},                             //
        {7, "L", 4, 0},                             // the lobby's list comes first
        {5, "hb", 4, 0},                            // anything else
        {7, "xlDp-d+", 5, 6},                       // programs are learnt in a battle, too; textures no more
    };
    SGame game;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.events);
        game.play("D");
        game.swap(row.scene);
        game.play(row.events);
        EXPECT_EQ(game.state().DrawFlags(), row.flags);
        EXPECT_EQ(game.state().SceneDrawCount(), row.sceneDraws);
        EXPECT_EQ(game.state().DrawCountThreshold(), 5u);
    }
}

// Catches a negative threshold that is taken for a low one: as an unsigned number no frame has more draws.
TEST(SGameDrawFlags, NeverRiseAboveANegativeThreshold) {
    SGame game("lobby:L#p#-1");
    game.play("Dcp-d+");
    EXPECT_EQ(game.state().DrawFlags(), 4u);
    game.swap(102);
    EXPECT_EQ(game.state().SceneStatus(), kStatusHeroSelect);
    game.play("DL");
    game.swap(102);
    EXPECT_EQ(game.state().SceneStatus(), kStatusLobby) << "every frame is a light one";
}

// Catches the clear program's masking that is forgotten, or the frame's counts kept, at the end of the frame.
TEST(SGameDrawFlags, SurviveTheFrameOnlyWhereTheyMust) {
    SGame game;
    game.play("Dp-");
    game.swap(0);
    game.play("D");
    EXPECT_EQ(game.state().SceneDrawCount(), 6u);
    game.play("+");
    EXPECT_EQ(game.state().DrawFlags(), 5u);
}

// Catches battle textures that are still known after the lobby: the next battle has others by these names.
TEST(SGameTextures, OfABattleAreForgottenInTheLobby) {
    SGame game;
    for (const char* frame : {"L", "B"}) {
        game.play(frame);
        game.swap(0);
    }
    game.play("lb");
    EXPECT_EQ(game.state().DrawFlags(), 6u);
    for (const char* frame : {"!", "B"}) {
        game.play(frame);
        game.swap(0);
    }
    game.play("b");
    EXPECT_EQ(game.state().DrawFlags(), 4u);
}

// Catches a label that is read beyond its length or its end, and what is no label that counts.
TEST(SGameLabels, EndAtTheirLengthOrAZero) {
    struct Label {
        GLsizei length;
        const char* text;
        bool lobby;
    };
    const Label labels[] = {{1, "Lx", true},  {-1, "L", true},     {5, "L\0xyz", true},
                            {2, "Lx", false}, {0, nullptr, false}, {3, nullptr, false}};
    SGame game;
    for (const Label& label : labels) {
        game.swap(5);
        game.swap(102);
        game.play("x");
        game.driver().forget();
        game.gl().glLabelObjectEXT(GL_TEXTURE, 'L', label.length, label.text);
        EXPECT_THAT(game.driver().calls(), ElementsAre(call("glLabelObjectEXT", GL_TEXTURE, GLuint('L'), label.length,
                                                            static_cast<const void*>(label.text))));
        game.play("L");
        game.swap(102);
        EXPECT_EQ(game.state().SceneStatus() == kStatusLobby, label.lobby) << label.length;
    }
}

// ---- the payload ---------------------------------------------------------------------------------------------------

struct Payload {
    const char* text;
    std::vector<size_t> scene; // patterns in the lists of the scenes 1 to 4
    std::vector<size_t> ui;
    size_t clearPrograms;
    int32_t threshold;
};

const Payload kPayloads[] = {
    {"battle-UI:a|a|b#", {0, 0, 0, 0}, {0, 2, 0, 0}, 0, 5},
    {"lobby:a;lobby:a|b;other:c;pick_hero:d;battle:e#x|y|x#-7", {3, 1, 1, 1}, {0, 0, 0, 0}, 2, -7},
    {"lobby:a:b;lobby;-UI:a;UI:a;nowhere:a;nowhere-UI:a;lobby-UI:a#p#12x#13", {0, 0, 0, 0}, {1, 0, 0, 0}, 1, 12},
    {"#p#9", {0, 0, 0, 0}, {0, 0, 0, 0}, 1, 5},      // empty sections vanish
    {"lobby:(#p", {1, 0, 0, 0}, {0, 0, 0, 0}, 1, 5}, // a bad pattern matches nothing
};

// Catches an entry that lands in another list, spoils the rest, or is compiled twice.
TEST(SGamePayload, FillsTheLists) {
    for (const Payload& payload : kPayloads) {
        SCOPED_TRACE(payload.text);
        const LogCapture log;
        OrvelSGameData data;
        data.ParsePayloadData(payload.text);
        for (int scene = 1; scene <= 4; ++scene) {
            EXPECT_EQ(data.GetSceneLabelRegexs(scene).size(), payload.scene[static_cast<size_t>(scene - 1)]) << scene;
            EXPECT_EQ(data.GetUILabelRegexs(scene).size(), payload.ui[static_cast<size_t>(scene - 1)]) << scene;
        }
        EXPECT_TRUE(data.GetSceneLabelRegexs(5).isEmpty());
        EXPECT_EQ(data.GetClearProgramLabelRegexs().size(), payload.clearPrograms);
        EXPECT_EQ(data.GetDrawCountThreshold(), payload.threshold);
    }
}

} // namespace
