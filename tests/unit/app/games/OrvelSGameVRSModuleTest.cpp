#include "LogCapture.h"
#include "PlayedGame.h"
#include "SGameShadingKeys.h"
#include "app/VRSComponent.h"
#include "app/games/sgame/ShadingRateTemplates.h"

#include <gmock/gmock.h>

#include <array>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace android;
using namespace android::orvel;
using namespace android::orvel::app::module;
using next::GlTable;
using testing::ElementsAre;

namespace {

constexpr GLuint kGamesTexture = 30;
constexpr GLuint kGamesBuffer = 31;
constexpr GLuint kMainColor = 50;
constexpr GLuint kImage = 70;
constexpr GLuint kFirstTemplate = 101;
constexpr char kToBattle[] = "b..mL!"; // from the first frame on, to one in which all rates act

/** What the driver offers; the component that sets rates looks before the game begins. */
struct Offered {
    explicit Offered(bool ext) {
        const GlTable gl = RecordingDriver().gles2().gl;
        mExtension.glShadingRateQCOM = gl.glShadingRateQCOM;
        if (ext) {
            mExtension.glShadingRateEXT = gl.glShadingRateEXT;
            mExtension.glShadingRateCombinerOpsEXT = gl.glShadingRateCombinerOpsEXT;
            mExtension.glFramebufferShadingRateEXT = gl.glFramebufferShadingRateEXT;
        }
        next::ext = mExtension;
        app::VRSComponent::GetInstance();
    }
    next::ExtTable mExtension{};
};

/** A game on a driver that has bindings, names and buffers, and writes down what matters here. */
class Battle : Offered, public PlayedGame {
public:
    explicit Battle(bool ext = true, const Json::Value& keys = shadingKeys())
        : Offered(ext),
          PlayedGame(APP_TYPE_SGAME, 1, keys.toStyledString().c_str()) {
        next::ext = mExtension;
        answerStateAndBuffers();
        answerWithTrace();
        picture(8, 1);
        picture(10, 2);
        play("1");
    }

    static void picture(int key, int value) { GameInfoMonitor::getInstance().parseGamePictureInfo(key, value); }
    static void smallWindow(int on) { GameInfoMonitor::getInstance().parseCommonVrs("game", on); }
    uint64_t frame() { return processor<app::OrvelProcessorBase>().GetCurrentFrameId(); }

    /**
     * Plays events, one character each.
     * @return what reached the driver: d A M U the game's calls of the events of that name, 1 2 3 4 the rates 1x1 2x2
     *         4x2 4x4 (of the older extension with a Q), ? a question for a location, # the image attached, ^N filled
     *         from the Nth template, > and = its combiner (the coarser one, neither), X what should not be
     */
    std::string play(const std::string& events) {
        for (const char event : events) {
            playOne(event);
        }
        return std::exchange(mTrace, {});
    }

    void expectGamesState() const {
        EXPECT_EQ(mTexture, kGamesTexture);
        EXPECT_EQ(mBuffer, kGamesBuffer);
        EXPECT_EQ(mPixelStore, kGamesPixelStore);
    }

    GLfloat mMatrix[16] = {}; // of the camera, at location 9 of program 5
    GLuint mLastBuffer = kFirstTemplate - 1;
    bool mMapping = true;
    std::map<GLuint, std::vector<uint8_t>> mMemory; // of buffers

private:
    static void scene(int id) { GameInfoMonitor::getInstance().parseGameSceneId("game", id); }
    void label(GLuint texture, const char* text) { gl().glLabelObjectEXT(GL_TEXTURE, texture, 0, text); }
    void endFrame() { driver().connection()->platform.eglSwapBuffers(nullptr, nullptr); }

    void playOne(char event) {
        switch (event) {
        case '.':
            return endFrame();
        case '!': // frames up to the one at whose end the settings are read
            do {
                endFrame();
            } while (frame() % 30 != 1);
            return;
        case 'l':
            return scene(4); // the lobby
        case 'b':
            return scene(7);
        case 'm':
            return label(1, "pvp_melee");
        case 'L':
            label('f', "f_hill");
            label('g', "floor");
            return label('u', "f"); // of no class
        case 'c':
            return gl().glBindTexture(GL_TEXTURE_CUBE_MAP, 'g');
        case 't':
            return gl().glBindTexture(GL_TEXTURE_2D, kGamesTexture);
        case 'E': // through the lobby, where templates are made, into a battle
            mBuffer = kGamesBuffer;
            EXPECT_EQ(play("l........" + std::string(kToBattle) + "S"), "");
            mTexture = kGamesTexture; // on another unit than the game's last one
            return;
        case 'd':
            return draw();
        case 'I': // the clear with which the interface begins, after enough of a scene
            return gl().glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        case 'U':
            gl().glUseProgram(5);
            return gl().glUniform4fv(9, 4, mMatrix);
        case 'S':
            return gl().glBindFramebuffer(GL_FRAMEBUFFER, 3);
        case 'Z':
            return gl().glBindFramebuffer(GL_FRAMEBUFFER, 0);
        case 'q':
            return picture(8, 3);
        case 'w':
            return smallWindow(1);
        case 'W':
            return smallWindow(0);
        case 'A':
            label(kMainColor, "x_Main_color_y");
            return gl().glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, kMainColor, 0);
        case 'M':
            return gl().glFramebufferTexture2DMultisampleEXT(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                                                             kMainColor, 0, 4);
        default:
            if (event >= '0' && event <= '9') {
                return GameInfoMonitor::getInstance().parseGameVrsLevel(event - '0');
            }
            gl().glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(event));
        }
    }

    void answerStateAndBuffers() {
        driver().answer<&GlTable::glGenTextures>([](GLsizei, GLuint* name) { *name = kImage; });
        driver().answer<&GlTable::glGenBuffers>([this](GLsizei, GLuint* name) { *name = ++mLastBuffer; });
        driver().answer<&GlTable::glBindTexture>([this](GLenum, GLuint name) { mTexture = name; });
        driver().answer<&GlTable::glBindBuffer>([this](GLenum, GLuint name) { mBuffer = name; });
        driver().answer<&GlTable::glGetIntegerv>([this](GLenum what, GLint* value) {
            const GLuint buffer = what == GL_PIXEL_UNPACK_BUFFER_BINDING ? mBuffer : 0;
            const auto stored = mPixelStore.find(what);
            *value = stored != mPixelStore.end()     ? stored->second
                     : what == GL_TEXTURE_BINDING_2D ? static_cast<GLint>(mTexture)
                                                     : static_cast<GLint>(buffer);
        });
        driver().answer<&GlTable::glPixelStorei>([this](GLenum what, GLint value) { mPixelStore[what] = value; });
        driver().answer<&GlTable::glMapBufferRange>([this](GLenum, GLintptr, GLsizeiptr size, GLbitfield) {
            std::vector<uint8_t>& memory = mMemory[mBuffer];
            memory.resize(static_cast<size_t>(size));
            return static_cast<void*>(mMapping ? memory.data() : nullptr);
        });
    }

    void answerWithTrace() {
        const auto noting = [this](const char* text) { return [this, text](auto...) { mTrace += text; }; };
        driver().answer<&GlTable::glDrawArrays>(noting("d"));
        driver().answer<&GlTable::glDrawElements>(noting("d"));
        driver().answer<&GlTable::glDrawElementsInstanced>(noting("d"));
        driver().answer<&GlTable::glDrawArraysInstanced>(noting("d"));
        driver().answer<&GlTable::glUniform4fv>(noting("U"));
        driver().answer<&GlTable::glFramebufferTexture2D>(noting("A"));
        driver().answer<&GlTable::glFramebufferTexture2DMultisampleEXT>(noting("M"));
        driver().answer<&GlTable::glFramebufferShadingRateEXT>(noting("#"));
        driver().answer<&GlTable::glTexSubImage2D>([this](auto...) {
            const bool inRows = mPixelStore == kRowsOfBytes;
            mTrace += (mTexture == kImage && inRows ? "^" : "X") + std::to_string(mBuffer - kFirstTemplate + 1);
        });
        driver().answer<&GlTable::glShadingRateCombinerOpsEXT>([this](GLenum first, GLenum second) {
            mTrace += first != 0x96D2 ? "X" : second == 0x96D5 ? ">" : "=";
        });
        driver().answer<&GlTable::glShadingRateEXT>([this](GLenum rate) { mTrace += codeOf(rate); });
        driver().answer<&GlTable::glShadingRateQCOM>(
            [this](GLenum rate) { mTrace += std::string("Q") + codeOf(rate); });
        driver().answer<&GlTable::glGetUniformLocation>([this](GLuint program, const GLchar* name) {
            mTrace += name == std::string("hlslcc_mtx4x4unity_MatrixVP") ? '?' : 'X';
            return program == 5 ? 9 : program == 6 ? 0 : -1;
        });
    }
    static char codeOf(GLenum rate) {
        const GLenum index = rate - GL_SHADING_RATE_1X1_PIXELS_EXT;
        return index < 9 ? "1XX2XX3X4"[index] : 'X';
    }

    using PixelStore = std::map<GLenum, GLint>;
    static inline const PixelStore kGamesPixelStore = {{GL_UNPACK_ALIGNMENT, 8}, {GL_UNPACK_ROW_LENGTH, 500}};
    static inline const PixelStore kRowsOfBytes = {{GL_UNPACK_ALIGNMENT, 1}, {GL_UNPACK_ROW_LENGTH, 0}};
    PixelStore mPixelStore = kGamesPixelStore;
    GLuint mTexture = 0; // bound
    GLuint mBuffer = 0;
    std::string mTrace;
};

// ---- draws ---------------------------------------------------------------------------------------------------------

struct Condition {
    std::string events;
    const char* trace;
    int quality = 1;
    int pictureKey10 = 2;
};
void PrintTo(const Condition& each, std::ostream* out) {
    *out << each.events << " quality " << each.quality << " picture " << each.pictureKey10;
}

class ShadingCondition : public testing::TestWithParam<Condition> {};

// Catches a condition of draws or of the rate image that is not asked for, or one in excess.
TEST_P(ShadingCondition, IsNeeded) {
    Battle battle;
    Battle::picture(8, GetParam().quality);
    Battle::picture(10, GetParam().pictureKey10);
    EXPECT_EQ(battle.play(GetParam().events), GetParam().trace);
}
INSTANTIATE_TEST_SUITE_P(OfDraws, ShadingCondition,
                         testing::Values(Condition{"b..mL!fd", "4d"}, Condition{"b..mL!fd", "4d", 2},
                                         Condition{"b..mL!fd", "d", 0}, Condition{"b..mL!fd", "d", 3},
                                         Condition{"b..mL!fd", "d", 1, 1},
                                         Condition{"wb..mL!fd", "d"},      // a small window
                                         Condition{"0b..mL!fd", "d"},      // no level
                                         Condition{"3b..mL!fd", "d"},      // one for which nothing is learnt
                                         Condition{"b..L!fd", "d"},        // no map
                                         Condition{"l..mL!fd", "d"},       // no battle
                                         Condition{"l..Lb..m!fd", "d"},    // labelled in the lobby
                                         Condition{"b.mL.fd", "d"},        // the level is not read yet
                                         Condition{"b..mL!l..bL!fd", "d"}, // no map since the lobby
                                         // What goes on while nothing is told to the driver.
                                         Condition{"b..mL!fdq!gfd", "4dd"},
                                         Condition{"b..mL!gdw.ddddddIdfd", "2ddddddddd"},
                                         Condition{"b..mL!gdw.fdW.dufd", "2ddd4d"}));
INSTANTIATE_TEST_SUITE_P(OfRegions, ShadingCondition,
                         testing::Values(Condition{"EAS", "#^1A>"}, Condition{"EAS", "A", 2},
                                         Condition{"EAS", "A", 1, 1}, Condition{"EZ", ""}, // the window is no target
                                         Condition{"EAl..S", "#^1A"},                      // the lobby
                                         Condition{"EA0!S", "#^1A="},                      // no level
                                         Condition{"EAw.S", "#^1A>"},       // a small window changes nothing
                                         Condition{"EAS.fdS", "#^1A>1d>"},  // a frame after one with regions
                                         Condition{"EAS..fd", "#^1A>4d"})); // and without

// Catches a later texture that takes over, a rate that is set twice, lost before the next texture or kept for the
// interface, and a texture without a rate, or on another target, that has one.
TEST(ShadingOfDraws, IsThatOfTheFirstTexture) {
    Battle battle;
    EXPECT_EQ(battle.play(kToBattle), "");
    EXPECT_EQ(battle.play("ucfgddudddd"), "4dddddd");
    EXPECT_EQ(battle.play("gd"), "2d");
    EXPECT_EQ(battle.play("Ifdd"), "1dd");
    EXPECT_EQ(battle.play(".fd"), "4d");
}

// Catches a level that is not followed or outlives the battle, a rate of "none" that reaches the driver, textures that
// outlive the lobby, and more than one call when the battle is left.
TEST(ShadingOfDraws, FollowsLevelAndBattle) {
    Battle battle;
    EXPECT_EQ(battle.play(kToBattle + std::string("fd")), "4d");
    EXPECT_EQ(battle.play("2.....gd"), "2d") << "a level is read every 30 frames";
    EXPECT_EQ(battle.play("!fgd"), "3d") << "level 2 has none for the far texture";
    EXPECT_EQ(battle.play("l.gdd!.d"), "1ddd") << "leaving costs one call";
    EXPECT_EQ(battle.play("Lb1m!gd"), "d") << "nothing is learnt in the lobby, and nothing is left";
    EXPECT_EQ(battle.play("Lgd"), "2d");
    EXPECT_EQ(battle.play("w.fd"), "d");
}

// Catches another uniform taken for the camera, a location that is asked for at every upload, a second look in one
// frame, and rates that stay when the camera stands.
TEST(ShadingOfDraws, WorksWhileTheCameraMoves) {
    Battle battle(true, shadingKeys({{"vrs_MotionDetection", "1"}}));
    EXPECT_EQ(battle.play(kToBattle + std::string(".fdfd")), "4dd") << "nothing was seen: it moves";
    const std::array<GLint, 3> others[] = {{5, 8, 4}, {5, 9, 1}, {6, 0, 4}, {7, -1, 4}, {0, 9, 4}};
    for (const auto& [program, location, count] : others) {
        battle.gl().glUseProgram(static_cast<GLuint>(program));
        battle.gl().glUniform4fv(location, count, battle.mMatrix);
    }
    EXPECT_EQ(battle.play(".fdfd"), "?UUUUUdd");
    EXPECT_EQ(battle.play("U"), "?U");
    battle.mMatrix[12] = 7; // too late for this frame
    EXPECT_EQ(battle.play("U.fdfd"), "U1dd") << "it stands";
    EXPECT_EQ(battle.play("U.fdfd"), "Ud4d") << "it moves; the first draw only ends the pause";
    battle.mMatrix[15] = 0.008f;
    EXPECT_EQ(battle.play("U.fdfd"), "U1dd") << "too little";
}

// Catches a driver with one extension only that gets calls of the other.
TEST(ShadingOfDraws, DoesWithTheOlderExtension) {
    Battle battle(false);
    EXPECT_EQ(battle.play("EA"), "A");
    EXPECT_EQ(battle.play("S.fd"), "Q4d");
    const LogCapture log;
    while (battle.frame() <= 360) {
        battle.play(".");
    }
    EXPECT_THAT(log.texts(ANDROID_LOG_DEBUG), ElementsAre("Vflag, p1 :1, p2: 0, level: 1"));
    EXPECT_EQ(battle.mLastBuffer, kFirstTemplate - 1);
}

// ---- regions -------------------------------------------------------------------------------------------------------

// Catches templates that are made twice or with another one's rates, an image that is attached after the game's texture
// or with another content, rows that are read by the game's layout, and state of the game that is lost.
TEST(ShadingOfRegions, HasTheLevelsTemplate) {
    Battle battle;
    EXPECT_EQ(battle.play("EA"), "#^1A");
    battle.expectGamesState();
    EXPECT_EQ(battle.mLastBuffer, kFirstTemplate + 3);
    const TemplateShape shape{277, 116, 0, 0};
    std::vector<uint8_t> expected(277 * 116);
    fillTwoRings(expected.data(), shape, 10, 5);
    EXPECT_EQ(battle.mMemory[kFirstTemplate], expected);
    fillThreeRings(expected.data(), shape, 4, 5, 6);
    EXPECT_EQ(battle.mMemory[kFirstTemplate + 1], expected);
    fillTwoRings(expected.data(), shape, 4, 6);
    EXPECT_EQ(battle.mMemory[kFirstTemplate + 2], expected);
    fillThreeRings(expected.data(), shape, 10, 4, 5);
    EXPECT_EQ(battle.mMemory[kFirstTemplate + 3], expected);

    const std::array<GLuint, 2> others[] = {
        {GL_DEPTH_ATTACHMENT, kMainColor}, {GL_COLOR_ATTACHMENT0, 'f'}, {GL_COLOR_ATTACHMENT0, 0}};
    for (const auto& [attachment, texture] : others) {
        battle.gl().glFramebufferTexture2D(GL_FRAMEBUFFER, attachment, GL_TEXTURE_2D, texture, 0);
        EXPECT_EQ(battle.play(""), "A");
    }
}

// Catches an image that is used in another framebuffer or for reading, draws with rates of their own at the same time,
// a level that does not reach the image, and a multisampled target with the other's template.
TEST(ShadingOfRegions, TakesOverFromDraws) {
    Battle battle;
    battle.play("EA");
    battle.gl().glBindFramebuffer(GL_FRAMEBUFFER, 0);
    EXPECT_EQ(battle.play("fd"), "4d");
    battle.gl().glBindFramebuffer(GL_READ_FRAMEBUFFER, 3);
    battle.gl().glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 4);
    EXPECT_EQ(battle.play("S"), ">");
    const LogCapture log;
    while (battle.frame() <= 360) {
        EXPECT_EQ(battle.play("S."), ">");
    }
    EXPECT_THAT(log.texts(ANDROID_LOG_DEBUG), ElementsAre("Vflag, p1 :0, p2: 1, level: 1"));
    EXPECT_EQ(battle.play("fd"), "1d");
    while (battle.frame() < 390) {
        battle.play(".");
    }
    EXPECT_EQ(battle.play("2St."), ">^2");
    battle.expectGamesState();
    EXPECT_EQ(battle.play("M"), "#^4M");
    battle.expectGamesState();
}

// Catches a camera that stands while regions stay coarse.
TEST(ShadingOfRegions, WaitsWhileTheCameraStands) {
    Battle battle(true, shadingKeys({{"vrs_MotionDetection", "1"}}));
    battle.play("EA");
    EXPECT_EQ(battle.play("U.S"), "?U=");
}

// Catches a call of a function that the driver lacks.
TEST(ShadingOfRegions, StandsHalfAnExtension) {
    Battle battle;
    next::ext.glFramebufferShadingRateEXT = nullptr;
    next::ext.glShadingRateCombinerOpsEXT = nullptr;
    EXPECT_EQ(battle.play("EA"), "A");
    EXPECT_EQ(battle.play("S.fd"), "1d") << "the image counts as used";
}

// Catches memory that is written without a mapping, an upload from a template that was never filled, codes read past
// the end, and an image of an absurd size.
TEST(ShadingOfRegions, DoesWithoutMemory) {
    Battle battle;
    battle.mMapping = false;
    const LogCapture log;
    EXPECT_EQ(battle.play("EA"), "#A");
    EXPECT_EQ(log.texts(ANDROID_LOG_ERROR).size(), 4u) << "each is tried once";
    battle.expectGamesState();
}
TEST(ShadingOfRegions, DoesWithTooFewCodes) {
    Battle battle(true, shadingKeys({{"vrs_LabelLevel", "1#44:far$44,22,12;2#42:ground$12,22,42,44,12"}}));
    EXPECT_EQ(battle.play("EA"), "#A");
    EXPECT_EQ(battle.mLastBuffer, kFirstTemplate - 1);
}
TEST(ShadingOfRegions, HasNoImageOfAnAbsurdSize) {
    Battle battle(true, shadingKeys({{"vrs_MapInfo", "0;0;2000000000;2000000000"}}));
    EXPECT_EQ(battle.play("EA"), "A");
    EXPECT_EQ(battle.mLastBuffer, kFirstTemplate - 1);
}

} // namespace
