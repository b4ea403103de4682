// Every game with everything configured does what games do and what none should, on Mesa, once without the library and
// once with it: what it is told and what the driver holds must be the same.
#include "EveryGame.h"
#include "../mesa/StateDump.h"
#include "GameProcess.h"

#include <GLES2/gl2ext.h>

#include <android/log.h>
#include <functional>
#include <random>
#include <sstream>
#include <sys/wait.h>
#include <vector>

namespace {

void label(GLenum type, GLuint object, GLsizei length, const GLchar* text) {
    reinterpret_cast<PFNGLLABELOBJECTEXTPROC>(eglGetProcAddress("glLabelObjectEXT"))(type, object, length, text);
}

/** What a game sees, a line each. */
using Transcript = std::ostringstream;

/** Runs it in a process of its own, as that game or as a program without the library, and answers its lines. */
std::string play(const EveryGame* game, const std::function<void(Transcript&, const GameProcess&)>& doAll) {
    int lines[2];
    EXPECT_EQ(pipe(lines), 0);
    const pid_t child = fork();
    if (child == 0) {
        if (!game) {
            setenv("ORVEL_LIBRARY", "none", 1);
        }
        std::string text;
        {
            const std::string configuration = game ? game->withoutRepetition() : "";
            GameProcess process(game ? game->package : "org.example.game", configuration.c_str());
            Transcript told;
            doAll(told, process);
            if (game && process.log().find("pid: ") == std::string::npos) {
                told << "the library was not at work\n";
            }
            EXPECT_TRUE(told.good());
            text = told.str();
        }
        for (size_t at = 0; at < text.size();) {
            const ssize_t count = write(lines[1], text.data() + at, text.size() - at);
            if (count <= 0) {
                break;
            }
            at += static_cast<size_t>(count);
        }
        _exit(testing::Test::HasFailure() ? 1 : 0); // Mesa's threads are not asked to end
    }
    close(lines[1]);
    const std::string text = readToEnd(lines[0]);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << (game ? "with" : "without") << " the library";
    return text;
}

class EveryGameTest : public testing::TestWithParam<EveryGame> {
protected:
    static void expectTheSame(const std::function<void(Transcript&, const GameProcess&)>& doAll) {
        const std::string without = play(nullptr, doAll);
        const std::string with = play(&GetParam(), doAll);
        EXPECT_GT(without.size(), 100u);
        std::istringstream expected(without);
        std::istringstream found(with);
        std::string expectedLine;
        std::string foundLine;
        for (int line = 1; std::getline(expected, expectedLine); ++line) {
            ASSERT_TRUE(std::getline(found, foundLine)) << "nothing after line " << line << ": " << expectedLine;
            ASSERT_EQ(foundLine, expectedLine) << "line " << line;
        }
        EXPECT_FALSE(std::getline(found, foundLine)) << foundLine;
    }
};

INSTANTIATE_TEST_SUITE_P(All, EveryGameTest, testing::ValuesIn(kEveryGame),
                         [](const auto& game) { return std::string(game.param.name); });

/** Those of extensions are null, and left out: the table has a hook where the driver has none. */
constexpr const char* kEveryCoreEntry[] = {
#define GL_ENTRY(Result, name, params, args, providers) *(providers) ? nullptr : #name,
#define EGL_ENTRY GL_ENTRY
#include <entries/egl_entries.in>
#include <entries/gl_entries.in>
#undef EGL_ENTRY
#undef GL_ENTRY
};

constexpr const char* kLabels[] = {"",
                                   "lobby_banner",
                                   "hero_stage",
                                   "hero_list_ui",
                                   "battle_hud",
                                   "SGame_Main_color_0",
                                   "scene_ground_d",
                                   "hero_skin_preview",
                                   "Hidden/Internal-Clear",
                                   "SceneColorMobile",
                                   "T_CrossHairNormal",
                                   "LoadingUI_Atlas",
                                   "CameraDesc",
                                   "Minimap_Chap02_ADV_City_BackGround",
                                   "AvatarIcon"};

/**
 * A game that calls at random, wrong calls among them, and takes its errors late. Its sizes are none of those that are
 * rewritten. Objects have names of its own choice, so that they do not depend on what others make.
 */
class RandomGame {
public:
    RandomGame(Transcript& told, const Context& context, unsigned seed)
        : mTold(told),
          mContext(context),
          mRandom(seed) {
        const char* vertex = "attribute vec4 p; void main() { gl_Position = p; }";
        const char* fragment = "precision highp float; uniform vec4 c; void main() { gl_FragColor = c; }";
        mProgram = glCreateProgram();
        for (const auto& [type, text] :
             {std::pair(GL_VERTEX_SHADER, vertex), std::pair(GL_FRAGMENT_SHADER, fragment)}) {
            const GLuint shader = glCreateShader(type);
            glShaderSource(shader, 1, &text, nullptr);
            glCompileShader(shader);
            glAttachShader(mProgram, shader);
        }
        glLinkProgram(mProgram);
        for (GLuint name = kFirstName; name < kFirstName + 6; ++name) {
            glBindTexture(GL_TEXTURE_2D, name);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 96, 54, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        }
        for (int i = 0; i < 16; ++i) { // hooks look at what becomes active
            glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(i));
            glBindTexture(GL_TEXTURE_2D, texture());
        }
    }

    void call() {
        switch (pick(26)) {
        case 0:
            return glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(pick(20)));
        case 1:
        case 2:
            return glBindTexture(GL_TEXTURE_2D, texture());
        case 3:
            return glBindFramebuffer(framebufferTarget(), pick(2) * (kFirstName + pick(4)));
        case 4:
            return glFramebufferTexture2D(framebufferTarget(), GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture(), 0);
        case 5:
            return glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, pick(2) ? 96 : 64, 54, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                                nullptr);
        case 6:
            return label(GL_TEXTURE, texture(), 0, kLabels[pick(std::size(kLabels))]);
        case 7:
            return label(GL_FRAMEBUFFER, kFirstName + pick(4), 0, kLabels[pick(std::size(kLabels))]);
        case 8:
            return label(GL_PROGRAM_OBJECT_EXT, mProgram, 0, kLabels[pick(std::size(kLabels))]);
        case 9:
            return glObjectLabel(GL_TEXTURE, texture(), -1, kLabels[pick(std::size(kLabels))]);
        case 10:
            return glClear(pick(2) ? GL_COLOR_BUFFER_BIT : GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        case 11:
            return glEnable(capability());
        case 12:
            return glDisable(capability());
        case 13:
            return glBlendFunc(pick(2) ? GL_SRC_ALPHA : GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
        case 14:
            return glViewport(0, 0, 96, static_cast<GLsizei>(pick(60)) - 2);
        case 15:
            return glScissor(3, 3, 20, 20);
        case 16:
            return glUseProgram(pick(2) * mProgram);
        case 17:
            return glBindBuffer(pick(2) ? GL_ARRAY_BUFFER : GL_UNIFORM_BUFFER, pick(3) * kFirstName);
        case 18:
            return glDrawArrays(GL_TRIANGLES, 0, 3);
        case 19:
            return glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_BYTE, "\0\1\2\0\1");
        case 20: {
            const GLenum attachment = GL_COLOR_ATTACHMENT0;
            return glInvalidateFramebuffer(framebufferTarget(), 1, &attachment);
        }
        case 21:
            return glDepthMask(pick(2));
        case 22: {
            const GLuint name = texture();
            return glDeleteTextures(1, &name);
        }
        case 23:
            return glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, pick(2) ? GL_NEAREST : 1);
        case 24:
            return glStencilMask(pick(256));
        default:
            return glBlitFramebuffer(0, 0, 9, 9, 0, 0, 9, 9, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        }
    }

    /** The state is not asked first: that would take the errors that a swap must leave. */
    void swap(const GameProcess& process, int frame) {
        process.root().write("/data/system/mcd/gameInfo", liveValues(frame));
        mTold << "swap " << mContext.swap() << '\n';
    }

    void tellErrors() {
        for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError()) {
            mTold << "error " << std::hex << error << std::dec << '\n';
        }
    }

    void tellState(int call) { mTold << "after " << call << '\n' << StateDump::take().text(); }

private:
    static constexpr GLuint kFirstName = 1001;

    /** Scene, quality, shading level, window, filter. */
    static std::string liveValues(int frame) {
        const std::string package = getenv("ORVEL_PACKAGE");
        const std::string number = std::to_string(frame % 9);
        return "1 " + package + " " + number + "\n2 " + package + " 10 2\n3 " + package + " 2\n4 " + package + " " +
               std::to_string(frame % 2) + "\n5 " + package + " " + number + " 70 " + std::to_string(frame / 2 % 2) +
               "\n";
    }

    GLuint pick(size_t count) { return static_cast<GLuint>(mRandom() % count); }
    GLuint texture() { return kFirstName + pick(6); }
    GLenum framebufferTarget() {
        constexpr GLenum kTargets[] = {GL_FRAMEBUFFER, GL_DRAW_FRAMEBUFFER, GL_READ_FRAMEBUFFER, GL_TEXTURE_2D};
        return kTargets[pick(std::size(kTargets))];
    }
    GLenum capability() {
        constexpr GLenum kCapabilities[] = {GL_BLEND, GL_DEPTH_TEST, GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_CULL_FACE, 7};
        return kCapabilities[pick(std::size(kCapabilities))];
    }

    Transcript& mTold;
    const Context& mContext;
    std::mt19937 mRandom; // the same numbers everywhere
    GLuint mProgram = 0;
};

} // namespace

// Catches state that is not given back, errors of ours that are left, errors of the game's that are lost, and a call
// that does not arrive, arrives twice or with other arguments, whatever filters, rates and recognisers do meanwhile.
TEST_P(EveryGameTest, SeesAndLeavesTheSameState) {
    expectTheSame([](Transcript& told, const GameProcess& process) {
        process.root().write("/data/system/mcd/gameInfo", "");
        const Context context;
        told << "current " << context.makeCurrent() << '\n';
        RandomGame game(told, context, 5);
        for (int frame = 0; frame < 40; ++frame) {
            for (int call = 0; call < 60; ++call) {
                game.call();
                if (call % 20 == 19 && frame % 2) { // errors stay over the swap of every other frame
                    game.tellErrors();
                    game.tellState(call);
                }
            }
            game.swap(process, frame);
        }
        game.tellErrors();
        game.tellState(0);
    });
}

// Catches EGL that answers otherwise: names that are null, unknown, core or extensions; the function that looks names
// up looked up by itself; every entry of the thread's table; calls without a context, without a surface, and after the
// end.
TEST_P(EveryGameTest, GetsTheSameAnswersOfEgl) {
    expectTheSame([](Transcript& told, const GameProcess&) {
        const auto tell = [&](const char* what, auto value) {
            told << what << ' ' << uint64_t(value) << ", error " << std::hex << eglGetError() << std::dec << '\n';
        };
        const auto isThere = [](const char* name) { return eglGetProcAddress(name) != nullptr; };
        tell("before the start", isThere("glClear"));
        tell("swap before the start", eglSwapBuffers(EGL_NO_DISPLAY, EGL_NO_SURFACE));
        const Context context;
        glClear(GL_COLOR_BUFFER_BIT); // no context: nothing happens
        glBindFramebuffer(GL_FRAMEBUFFER, 1);
        tell("error without a context", glGetError());
        tell("swap without a context", context.swap());
        for (const char* name : {static_cast<const char*>(nullptr), "", "gl", "glNoSuchThing", "eglNoSuchThing"}) {
            tell(name ? name : "null", isThere(name));
        }
        for (const char* name : kEveryCoreEntry) {
            if (name) {
                tell(name, isThere(name));
            }
        }
        auto lookup = &eglGetProcAddress;
        for (int i = 0; i < 100 && lookup; ++i) {
            lookup = reinterpret_cast<decltype(lookup)>(lookup("eglGetProcAddress"));
        }
        tell("itself", lookup && lookup("glClear") == eglGetProcAddress("glClear"));

        tell("no surface", eglMakeCurrent(context.display, EGL_NO_SURFACE, EGL_NO_SURFACE, context.context));
        tell("is current", eglGetCurrentContext() == context.context);
        glClear(GL_COLOR_BUFFER_BIT); // there is no framebuffer
        tell("error without a surface", glGetError());
        tell("swap of none", eglSwapBuffers(context.display, EGL_NO_SURFACE));
        tell("swap of another", context.swap());
        tell("wrong context", eglMakeCurrent(context.display, context.surface, context.surface, EGLContext(1)));
        tell("current", context.makeCurrent());
        tell("version", glGetString(GL_VERSION) != nullptr);
        tell("destroyed", eglDestroyContext(context.display, context.context));
        tell("destroyed twice", eglDestroyContext(context.display, context.context));
        tell("left", context.leave());
        tell("destroyed null", eglDestroyContext(context.display, EGL_NO_CONTEXT));
        tell("ended", eglTerminate(context.display));
        tell("swap after the end", context.swap());
        const Context again;
        tell("current again", again.makeCurrent());
        glClear(GL_COLOR_BUFFER_BIT);
        tell("drew again", glGetError());
    });
}

// Catches texts of any length that break a hook or arrive otherwise: labels, shaders and names.
TEST_P(EveryGameTest, MayPassTextsOfAnyLength) {
    expectTheSame([](Transcript& told, const GameProcess&) {
        const Context context;
        context.makeCurrent();
        const auto tellError = [&](const char* what, GLsizei length) {
            told << what << ' ' << length << ": error " << std::hex << glGetError() << std::dec << '\n';
        };
        GLuint texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
        const GLuint program = glCreateProgram();
        std::string text(200'000, 'x');
        text.replace(0, 12, "lobby_(((\n%s");
        for (const GLsizei length : {-2'000'000'000, -1, 0, 1, 63, 64, 65, 255, 256, 257, 4096, 100'000}) {
            label(GL_TEXTURE, texture, length, text.c_str());
            tellError("texture", length);
            label(GL_FRAMEBUFFER, 77, length, text.c_str()); // there is none
            tellError("framebuffer", length);
            glObjectLabel(GL_TEXTURE, texture, length, text.c_str());
            tellError("object", length);
            glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 1, length, text.c_str());
            tellError("group", length);
            const GLchar* texts[] = {text.c_str(), nullptr, ""};
            const GLint lengths[] = {length, 0, -1};
            for (const GLsizei count : {-1, 0, 1, 3}) {
                glShaderSource(shader, count, texts, lengths);
                tellError("shader", count);
            }
            GLint held = 0;
            glGetShaderiv(shader, GL_SHADER_SOURCE_LENGTH, &held);
            told << "held " << held << '\n';
        }
        label(GL_TEXTURE, texture, 0, nullptr);
        tellError("label null", 0);
        label(GL_TEXTURE, texture, 5, nullptr);
        tellError("label null", 5);
        told << glGetUniformLocation(program, text.c_str()) << glGetAttribLocation(program, text.c_str()) << '\n';
        tellError("locations", 0);
        glDeleteTextures(-1, &texture);
        tellError("delete", -1);
    });
}

// Catches a lock that is held, or a list that is walked, while the driver calls the game, which calls again.
TEST_P(EveryGameTest, MayBeCalledFromWithinItsOwnCalls) {
    expectTheSame([](Transcript& told, const GameProcess& process) {
        static int calls = 0;
        static const auto again = [] {
            static thread_local int depth = 0;
            if (depth == 0) {
                ++depth;
                ++calls;
                glDisable(GL_DITHER);
                glViewport(0, 0, 9, 9);
                eglGetProcAddress("glShadingRateEXT");
                eglMakeCurrent(eglGetCurrentDisplay(), eglGetCurrentSurface(EGL_DRAW), eglGetCurrentSurface(EGL_READ),
                               eglGetCurrentContext());
                --depth;
            }
        };
        process.root().write("/data/system/mcd/gameInfo", "");
        const Context context;
        context.makeCurrent();
        RandomGame game(told, context, 7);
        glEnable(GL_DEBUG_OUTPUT);
        glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
        glDebugMessageCallback([](GLenum, GLenum, GLuint, GLenum, GLsizei, const GLchar*, const void*) { again(); },
                               nullptr);
        for (int frame = 0; frame < 20; ++frame) {
            for (int call = 0; call < 60; ++call) {
                game.call();
                game.tellErrors();
            }
            game.swap(process, frame);
        }
        told << (calls > 0 ? "called back\n" : "the driver never called\n");
    });
}

// Catches the same where the library's own lines go to a logger of the game's. What it calls is not comparable.
TEST_P(EveryGameTest, MayBeCalledFromWithinItsLog) {
    const std::string told = play(&GetParam(), [](Transcript& said, const GameProcess& process) {
        static bool isInside = false;
        static int calls = 0;
        process.root().write("/properties", "vendor.orvel.debug=true\n");
        process.root().write("/data/system/mcd/gameInfo", "");
        const Context context;
        context.makeCurrent();
        RandomGame game(said, context, 7);
        __android_log_set_logger([](const __android_logger_data*, const char*) {
            if (eglGetCurrentContext() == EGL_NO_CONTEXT || isInside) {
                return; // a thread of the library's
            }
            isInside = true;
            ++calls;
            GLuint name = 0;
            glGenTextures(1, &name);
            glActiveTexture(GL_TEXTURE3);
            glBindTexture(GL_TEXTURE_2D, name);
            glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 320, 180);
            label(GL_TEXTURE, name, 0, "Minimap_Chap02_ADV_City_BackGround");
            label(GL_PROGRAM_OBJECT_EXT, name, 0, "Hidden/PostProcessing/Copy");
            glDeleteTextures(1, &name);
            eglMakeCurrent(eglGetCurrentDisplay(), eglGetCurrentSurface(EGL_DRAW), eglGetCurrentSurface(EGL_READ),
                           eglGetCurrentContext());
            isInside = false;
        });
        for (int frame = 0; frame < 20; ++frame) {
            for (int call = 0; call < 60; ++call) {
                game.call();
            }
            game.swap(process, frame);
        }
        __android_log_set_logger(__android_log_stderr_logger);
        said << (calls > 0 ? "called back" : "the log never called");
    });
    EXPECT_TRUE(
        told.ends_with(GetParam().configuration == kEveryLegacyFeature ? "called back" : "the log never called"));
}

// Catches a binary that is changed on its way: programs that are not linked from text are never rewritten.
TEST_P(EveryGameTest, LoadsProgramBinariesAsTheyAre) {
    expectTheSame([](Transcript& told, const GameProcess&) {
        const Context context;
        context.makeCurrent();
        const auto link = [] {
            const GLuint program = glCreateProgram();
            std::string vertex = "void main() { gl_Position = vec4(0.0); }";
            std::string fragment = "void main() { gl_FragColor = vec4(0.3); }"; // nothing that is rewritten
            for (auto& [type, text] :
                 {std::pair(GL_VERTEX_SHADER, &vertex), std::pair(GL_FRAGMENT_SHADER, &fragment)}) {
                const GLuint shader = glCreateShader(type);
                const GLchar* texts[] = {text->c_str()};
                glShaderSource(shader, 1, texts, nullptr);
                glCompileShader(shader);
                glAttachShader(program, shader);
            }
            glProgramParameteri(program, GL_PROGRAM_BINARY_RETRIEVABLE_HINT, GL_TRUE);
            glLinkProgram(program);
            return program;
        };
        const GLuint program = link();
        GLint size = 0;
        glGetProgramiv(program, GL_PROGRAM_BINARY_LENGTH, &size);
        std::vector<char> binary(static_cast<size_t>(size));
        GLenum format = 0;
        GLsizei length = 0;
        glGetProgramBinary(program, size, &length, &format, binary.data());
        told << "bytes " << length << ", format " << format << '\n';
        for (const GLsizei part : {length, length / 2, 0, -1}) {
            const GLuint other = glCreateProgram();
            glProgramBinary(other, format, binary.data(), part);
            GLint linked = 0;
            glGetProgramiv(other, GL_LINK_STATUS, &linked);
            told << "linked from " << part << ": " << linked << ", error " << glGetError() << '\n';
        }
    });
}
