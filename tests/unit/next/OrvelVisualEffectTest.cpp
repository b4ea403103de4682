#include "EffectGame.h"
#include "RecordingDriver.h"
#include "next/OrvelNext.h"
#include "next/OrvelStateTracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace android;
using namespace android::orvel::next;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr GLint kGamesTexture = 5, kGamesProgram = 8, kGamesArray = 9;
constexpr GLint kParam = 1; // location
int sContext;

/** A driver that makes whatever it is asked for, and notes what is made in a frame: one letter each. */
class Effects : public testing::Test {
protected:
    void SetUp() override {
        const auto makeName = [this](GLsizei, GLuint* name) { *name = ++mNames; };
        mDriver->answer<&platform_impl_t::glGetString>(
            [](GLenum) { return reinterpret_cast<const GLubyte*>("GL_EXT_shader_framebuffer_fetch"); });
        mDriver->answer<&platform_impl_t::eglGetCurrentContext>([this] { return mCurrent; });
        mDriver->answer<&GlTable::glGenTextures>(makeName);
        mDriver->answer<&GlTable::glGenBuffers>(makeName);
        mDriver->answer<&GlTable::glGenVertexArrays>([this, makeName](GLsizei n, GLuint* name) {
            mMade += 'V';
            makeName(n, name);
        });
        mDriver->answer<&GlTable::glCreateShader>([this](GLenum) { return ++mNames; });
        mDriver->answer<&GlTable::glCreateProgram>([this] { return ++mNames; });
        mDriver->answer<&GlTable::glShaderSource>([this](GLuint, GLsizei, const GLchar* const* text, const GLint*) {
            for (const auto& [mark, letter] : {std::pair{"lutTex", 'L'}, {"0.769", 'B'}, {"0.78,", 'G'}}) {
                mMade += std::strstr(*text, mark) ? std::string(1, letter) : "";
            }
        });
        mDriver->answer<&GlTable::glProgramBinary>(
            [this](GLuint, GLenum format, const void*, GLsizei) { mMade += static_cast<char>(format); });
        mDriver->answer<&GlTable::glTexStorage2D>([this](GLenum, GLsizei, GLenum, GLsizei, GLsizei) { mMade += 'T'; });
        mDriver->answer<&GlTable::glMapBufferRange>([this](GLenum, GLintptr, GLsizeiptr size, GLbitfield) -> void* {
            mMade += 'I';
            mMapped.resize(static_cast<size_t>(size));
            return mMapped.data();
        });
        mDriver->answer<&GlTable::glCheckFramebufferStatus>([this](GLenum) { return mFramebuffer; });
        mDriver->answer<&GlTable::glGetShaderiv>([](GLuint, GLenum, GLint* value) { *value = 1; });
        mDriver->answer<&GlTable::glGetProgramiv>([](GLuint, GLenum, GLint* value) { *value = 1; });
        mDriver->answer<&GlTable::glGetProgramInterfaceiv>([](GLuint, GLenum, GLenum, GLint* value) { *value = 2; });
        mDriver->answer<&GlTable::glGetProgramResourceiv>(
            [](GLuint, GLenum, GLuint, GLsizei, const GLenum*, GLsizei, GLsizei*, GLint* values) {
                const GLint answer[] = {7, GL_FLOAT_VEC4, 0, 1, -1};
                std::copy(std::begin(answer), std::end(answer), values);
            });
        mDriver->answer<&GlTable::glGetProgramResourceName>(
            [](GLuint, GLenum, GLuint index, GLsizei, GLsizei*, GLchar* name) {
                std::strcpy(name, index == 0 ? "param" : "lutTex");
            });
        mDriver->answer<&GlTable::glGetUniformLocation>(
            [](GLuint, const GLchar* name) { return name[0] == 'p' ? kParam : 2; });
        mDriver->answer<&GlTable::glGetTexParameteriv>([this](GLenum, GLenum, GLint* value) { *value = mHasStorage; });
        mDriver->answer<&GlTable::glGetIntegerv>([this](GLenum name, GLint* value) {
            if (name == GL_PROGRAM_BINARY_FORMATS) {
                std::copy(kFormats.begin(), kFormats.end(), value);
                return;
            }
            *value = name == GL_ACTIVE_TEXTURE               ? static_cast<GLint>(mActive)
                     : name == GL_TEXTURE_BINDING_2D         ? kGamesTexture
                     : name == GL_SAMPLER_BINDING            ? mSampler
                     : name == GL_CURRENT_PROGRAM            ? kGamesProgram
                     : name == GL_VERTEX_ARRAY_BINDING       ? kGamesArray
                     : name == GL_MAX_TEXTURE_SIZE           ? mMaxTextureSize
                     : name == GL_NUM_PROGRAM_BINARY_FORMATS ? static_cast<GLint>(kFormats.size())
                                                             : 0;
        });
        mDriver->answer<&GlTable::glUniform4fv>([this](GLint, GLsizei, const GLfloat* values) {
            mParams.push_back({values[0], values[1]});
        });
    }
    void makeGame(OrvelApplicationType type, const char* types, const char* binary = "0;0;0;1") {
        mGame = std::make_unique<EffectGame>(type, binary, types);
        for (const char* image : {"kelaiyinlan", "heijin", "jinqiu", "nuancheng", "saibopengke", "lengqing"}) {
            mGame->writeResource(std::string(image) + ".png", pngFile(4, 4));
        }
        for (const auto& [file, format] : {std::pair{"lut", 'l'}, {"oldbrown", 'b'}, {"nightgreen", 'g'}}) {
            mGame->writeResource(std::string(file) + ".bin", {1, 0, 0, 0, format, 0, 0, 0, 'x'});
        }
        mManager = std::make_unique<OrvelVisualEffectManager>();
    }
    /** One frame. @return what was made in it */
    std::string frame() {
        mMade.clear();
        mManager->FrameEnd();
        return mMade;
    }
    /** Draws as a module does. @return what the driver saw, without questions */
    Calls render() {
        mDriver->forget();
        {
            OrvelStateTracker tracker(true);
            mManager->Render(tracker);
        }
        return mDriver->callsWithout({"glGet", "glCheck"});
    }
    /** A frame, and a drawing. @return the parameters that were sent for it */
    std::vector<std::pair<float, float>> paramsOfNextFrame() {
        frame();
        mParams.clear();
        render();
        return mParams;
    }

    static constexpr std::array<GLint, 3> kFormats{'l', 'b', 'g'}; // of program binaries

    std::unique_ptr<RecordingDriver> mDriver = RecordingDriver::installed();
    std::unique_ptr<EffectGame> mGame;
    std::unique_ptr<OrvelVisualEffectManager> mManager;
    GLuint mNames = 100;
    GLenum mFramebuffer = GL_FRAMEBUFFER_COMPLETE;
    GLenum mActive = GL_TEXTURE0;
    GLint mSampler = 0;
    GLint mMaxTextureSize = 4096;
    GLint mHasStorage = GL_TRUE;
    EGLContext mCurrent = &sContext;
    std::string mMade;
    std::vector<char> mMapped;
    std::vector<std::pair<float, float>> mParams; // x and y of "param"
};

/** What is made frame by frame after loading was enabled; a small letter is a program made of a binary. */
struct Timeline {
    OrvelApplicationType game;
    const char* types;
    std::vector<std::string> made;
    const char* binary = "0;0;0;1";
};

void PrintTo(const Timeline& timeline, std::ostream* out) {
    *out << timeline.game << ": " << timeline.types << ", " << timeline.binary;
}

class Loading : public Effects, public testing::WithParamInterface<Timeline> {};

} // namespace

// Catches a frame that loads more than one object, another order, a switch or a file of another effect, images that do
// not share their texture, and a filter that is drawn before everything is there.
TEST_P(Loading, MakesOneObjectPerFrame) {
    makeGame(GetParam().game, GetParam().types, GetParam().binary);
    EffectGame::choose(1);
    EXPECT_EQ(frame(), ""); // not enabled yet
    mManager->EnableLoadResource();
    for (const std::string& made : GetParam().made) {
        EXPECT_FALSE(mManager->EnableRender());
        EXPECT_THAT(render(), IsEmpty());
        EXPECT_EQ(frame(), made);
    }
    EXPECT_TRUE(mManager->EnableRender());
    EXPECT_EQ(frame(), "");
}
INSTANTIATE_TEST_SUITE_P(
    Games, Loading,
    testing::Values(
        Timeline{APP_TYPE_SGAME, "1;2;4;5;7;8", {"V", "L", "B", "G", "", "", "TI", "I", "I", "I", ""}},
        Timeline{APP_TYPE_PUBG, "1;2;3;6;7", {"V", "L", "B", "G", "", "", "TI", "I", "I", ""}},
        Timeline{APP_TYPE_PUBG, "1;1;3;3;4;4", {"V", "L", "B", "G", "", "", "TI", "I", "", "", ""}}, // 4: no image
        Timeline{APP_TYPE_PUBG, "1;1;1;1;1", {"V", "l", "B", "g", "", "", "", "", "", ""}, "1;0;1;1"},
        Timeline{APP_TYPE_PUBG, "1;1;1;1;1", {"V", "L", "b", "G", "", "", "", "", "", ""}, "0;1;0;1"}));

// Catches an image that the driver has no texture for and that is used, and a failure that is kept for the next one.
TEST_F(Effects, NeedATextureForTheirImage) {
    makeGame(APP_TYPE_SGAME, "4;4;4;4;4");
    const auto texture = [this] {
        mMade.clear();
        return mManager->GetPNGTexture(4, 4, GL_RGB8);
    };
    mMaxTextureSize = 2;
    EXPECT_TRUE(!texture() && mMade == "") << "asked for a storage that the driver does not have: " << mMade;
    EffectGame::choose(4);
    EffectGame::load(*mManager);
    EXPECT_FALSE(mManager->EnableRender());
    mMaxTextureSize = 4;
    mHasStorage = GL_FALSE; // no memory
    EXPECT_TRUE(!texture() && mMade == "T");
    mHasStorage = GL_TRUE;
    EXPECT_TRUE(texture() && mMade == "T");
    EXPECT_TRUE(texture() && mMade == "");
}

// Catches a choice that is lost while loading, followed before its time, or taken for a filter that there is not.
TEST_F(Effects, FollowTheChosenType) {
    makeGame(APP_TYPE_SGAME, "1;2;3;4;5", "0;0;0;3");
    mManager->EnableLoadResource();
    for (int i = 1; i <= 10; ++i) {
        EffectGame::choose(i < 4 ? 9 : 4); // changed while loading
        frame();
        EXPECT_EQ(mManager->EnableRender(), i == 10);
    }
    struct Choice {
        int type;
        bool drawn;
    };
    for (const auto& [type, drawn] : {Choice{1, true},
                                      {0, false},
                                      {2, true},
                                      {9, false},
                                      {5, true},
                                      {-1, false},
                                      {3, false} /* no image in this game */,
                                      {4, true},
                                      {8, false} /* not loaded */}) {
        EffectGame::choose(type);
        for (int i = 0; i < 3; ++i) { // the type is looked at once in these
            frame();
        }
        EXPECT_EQ(mManager->EnableRender(), drawn) << type;
    }
}

// Catches parameters that are sent too often, not at all, or of another scale.
TEST_F(Effects, ParametersFollowThePlayer) {
    using Params = std::vector<std::pair<float, float>>;
    makeGame(APP_TYPE_SGAME, "1;2;4;5;7");
    EffectGame::choose(4, 50, 1);
    EffectGame::load(*mManager);
    struct Step {
        int type, strength, darkEdge;
        Params sent;
    };
    for (const auto& [type, strength, darkEdge, sent] : {Step{4, 50, 1, {{0.5F, 2}}},
                                                         {4, 50, 1, {}},
                                                         {4, 20, 1, {{0.2F, 2}}},
                                                         {4, 20, 0, {{0.2F, 0}}},
                                                         {5, 20, 0, {{0.2F, 0}}}, // the program's may be another type's
                                                         {1, 20, 1, {{2, 0}}},
                                                         {1, 20, 0, {}}, // shows when it is chosen again
                                                         {2, 20, 0, {{0, 0}}},
                                                         {1, 20, 0, {{0, 0}}}}) {
        EffectGame::choose(type, strength, darkEdge);
        EXPECT_EQ(paramsOfNextFrame(), sent) << type << " " << strength << " " << darkEdge;
    }
}

// Catches a draw without its program, image or vertex array, and a game's unit or sampler that is not given back.
TEST_F(Effects, DrawOnTheGamesStateAndPutItBack) {
    makeGame(APP_TYPE_SGAME, "1;4;5;7;8");
    EffectGame::choose(4);
    EffectGame::load(*mManager); // names: VAO 101, the LUT program 104, texture and buffer from 111 on
    render();                    // uploads the image
    mActive = GL_TEXTURE3;
    mSampler = 7;
    EXPECT_THAT(render(),
                ElementsAre(call("glUseProgram", 104), call("glActiveTexture", GL_TEXTURE0),
                            call("glBindSampler", 0, 0), call("glBindTexture", GL_TEXTURE_2D, 111),
                            call("glBindVertexArray", 101), call("glDrawArrays", GL_TRIANGLES, 0, 3),
                            call("glBindSampler", 0, 7), call("glBindTexture", GL_TEXTURE_2D, kGamesTexture),
                            call("glUseProgram", kGamesProgram), call("glBindVertexArray", kGamesArray),
                            call("glActiveTexture", GL_TEXTURE3), call("glBindTexture", GL_TEXTURE_2D, kGamesTexture)));
}

// Catches a draw that leaves its error with the game.
TEST_F(Effects, DrawNothingIntoAnIncompleteFramebuffer) {
    makeGame(APP_TYPE_SGAME, "1");
    EffectGame::choose(1);
    EffectGame::load(*mManager);
    mFramebuffer = GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT;
    EXPECT_THAT(render(), IsEmpty());
}

// Catches objects that are lost, deleted in another order, or deleted on another context, where their names are
// others'.
TEST_F(Effects, EndOnTheirOwnContextOnly) {
    makeGame(APP_TYPE_SGAME, "1;4;5;7;8");
    for (const bool current : {true, false}) {
        mCurrent = &sContext;
        auto manager = std::make_unique<OrvelVisualEffectManager>();
        EffectGame::load(*manager);
        mCurrent = current ? &sContext : EGL_NO_CONTEXT;
        mDriver->forget();
        manager.reset();
        Calls deleted = mDriver->callsOf({"glDelete"});
        std::erase_if(deleted, [](const std::string& each) { return each.find("glDelete") != 0; });
        for (std::string& each : deleted) {
            each.resize(each.find('('));
        }
        if (current) {
            const std::string buffer = "glDeleteBuffers", program = "glDeleteProgram";
            EXPECT_THAT(deleted, ElementsAre(buffer, buffer, buffer, buffer, program, program, program,
                                             "glDeleteTextures", "glDeleteVertexArrays"));
        } else {
            EXPECT_THAT(deleted, IsEmpty());
        }
    }
    mDriver->forget();
    mManager.reset(); // never loaded
    EXPECT_THAT(mDriver->calls(), IsEmpty());
}
