// The framework on Mesa: real contexts on real threads.
#include "EveryGame.h"
#include "GameProcess.h"

#include <GLES2/gl2ext.h>
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr char kPackage[] = "com.tencent.tmgp.pubgmhd";
constexpr char kEveryContext[] = R"({"configs":{"xrender_BaseInfo":"1"}})"; // a module that every driver can have
constexpr char kByThreadName[] = R"({"configs":{"xrender_BaseInfo":"1","xrender_CheckMainInfo":"1;Render.*"}})";
constexpr char kByPipeline[] = R"({"configs":{"xrender_BaseInfo":"1","xrender_CheckMainInfo":"2"}})";

using Pixel = std::array<GLubyte, 4>;

Pixel pixel() {
    Pixel read{};
    glReadPixels(1, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, read.data());
    return read;
}

/**
 * Clears and swaps, which is what the framework hooks in any game; Mesa does not swap in a context that was destroyed.
 */
void drawFrame(const Context& context, GLubyte red, bool destroyed = false) {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDisable(GL_DEPTH_TEST);
    glClearColor(static_cast<GLfloat>(red) / 255, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(pixel(), (Pixel{red, 0, 0, 255}));
    EXPECT_EQ(context.swap(), EGLBoolean(!destroyed));
}

/** Another context of the same surface kind that shares its objects. */
EGLContext shareWith(const Context& other) {
    const EGLint attributes[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
    EGLint id = 0;
    eglQueryContext(other.display, other.context, EGL_CONFIG_ID, &id);
    const EGLint wanted[] = {EGL_CONFIG_ID, id, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    eglChooseConfig(other.display, wanted, &config, 1, &count);
    return eglCreateContext(other.display, config, other.context, attributes);
}

class Contexts : public testing::TestWithParam<const char*> {};

// Catches a framework that breaks what a game does with its contexts: two at a time on two threads, shared objects, one
// destroyed while it is current elsewhere, handles that come again; in every way of choosing the main context. Under
// the sanitizers also a processor used after its end, or by two threads.
TEST_P(Contexts, WorkOnTwoThreadsAtOnce) {
    GameProcess game(kPackage, GetParam());
    const Context first;
    ASSERT_TRUE(first.makeCurrent());
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glFinish();
    const auto play = [&](GLubyte red, const char* name) {
        pthread_setname_np(pthread_self(), name);
        for (int round = 0; round < 8; ++round) {
            Context own;
            const EGLContext shared = shareWith(first);
            ASSERT_TRUE(own.makeCurrent());
            drawFrame(own, red);
            ASSERT_TRUE(eglMakeCurrent(own.display, own.surface, own.surface, shared));
            EXPECT_TRUE(glIsTexture(texture));
            drawFrame(own, red);
            EXPECT_TRUE(eglDestroyContext(own.display, shared)); // is current: lives on until it is left
            drawFrame(own, red, true);
            ASSERT_TRUE(own.makeCurrent());
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
            EXPECT_TRUE(own.leave());
            EXPECT_TRUE(eglDestroyContext(own.display, own.context));
        }
    };
    std::thread other(play, GLubyte(255), "RenderThread");
    for (int frame = 0; frame < 50; ++frame) {
        drawFrame(first, 51);
    }
    other.join();
    std::thread again(play, GLubyte(102), "GameThread");
    again.join();
    drawFrame(first, 51);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

INSTANTIATE_TEST_SUITE_P(Modes, Contexts, testing::Values(kEveryContext, kByThreadName, kByPipeline),
                         [](const auto& mode) { return "Mode" + std::to_string(mode.index); });

// Catches a processor that is destroyed under a thread that draws with it.
TEST(Contexts, OneIsDestroyedWhileAnotherThreadDraws) {
    GameProcess game(kPackage, kEveryContext);
    const Context context;
    std::atomic<int> frames{0};
    std::atomic<bool> destroyed{false};
    std::thread other([&] {
        EXPECT_TRUE(context.makeCurrent());
        drawFrame(context, 51);
        frames = 1;
        frames.notify_one();
        while (!destroyed) {
            glDisable(GL_BLEND);
        }
        for (int frame = 0; frame < 20; ++frame) {
            drawFrame(context, 51, true);
        }
        context.leave();
    });
    frames.wait(0);
    EXPECT_TRUE(eglDestroyContext(context.display, context.context));
    const Context next; // may get the same address
    destroyed = true;
    ASSERT_TRUE(next.makeCurrent());
    drawFrame(next, 102);
    other.join();
}

class EveryGameContexts : public testing::TestWithParam<EveryGame> {};

// Catches bookkeeping that two threads of one share group change at once, and handles that come again while others
// draw. The legacy features know one context: there the other threads share it and load, while targets are switched.
TEST_P(EveryGameContexts, WorkOnManyThreads) {
    GameProcess game(GetParam().package, GetParam().withoutRepetition().c_str());
    game.root().write("/data/system/mcd/gameInfo", "");
    const bool isLegacy = GetParam().configuration == kEveryLegacyFeature;
    const bool isResized = std::string(GetParam().package).find("miHoYo") != std::string::npos;
    const Context first;
    ASSERT_TRUE(first.makeCurrent());
    GLuint target = 0;
    GLuint framebuffer = 0;
    glGenTextures(1, &target);
    glBindTexture(GL_TEXTURE_2D, target);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 320, 180);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target, 0);
    const auto label = reinterpret_cast<PFNGLLABELOBJECTEXTPROC>(eglGetProcAddress("glLabelObjectEXT"));
    std::atomic<int> running{3};
    const auto work = [&](int number) {
        const Context own;
        pthread_setname_np(pthread_self(), "Loader");
        for (int round = 0; round < 8; ++round) {
            const EGLContext shared = shareWith(isLegacy || number % 2 ? first : own);
            ASSERT_TRUE(eglMakeCurrent(own.display, own.surface, own.surface, shared));
            const GLuint program = glCreateProgram();
            std::array<GLuint, 4> textures{};
            glGenTextures(4, textures.data());
            for (const GLuint texture : textures) {
                glActiveTexture(GL_TEXTURE0 + texture % 4);
                glBindTexture(GL_TEXTURE_2D, texture);
                glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 320, 180, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
                glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
                glObjectLabel(GL_TEXTURE, texture, -1, "scene_ground_d");
                label(GL_TEXTURE, texture, 0, "Minimap_Chap02_ADV_City_BackGround");
                GLuint storage = 0;
                glGenTextures(1, &storage);
                glBindTexture(GL_TEXTURE_2D, storage);
                glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 320, 180);
                GLuint drawnInto = 0;
                glGenFramebuffers(1, &drawnInto);
                glBindFramebuffer(GL_FRAMEBUFFER, drawnInto);
                glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
                glDeleteFramebuffers(1, &drawnInto);
                label(GL_PROGRAM_OBJECT_EXT, program, 0, "Hidden/PostProcessing/Copy");
                glDeleteTextures(1, &storage);
            }
            std::string text = "precision mediump float; void main() { gl_FragColor = vec4(1.0); }";
            const GLchar* texts[] = {text.c_str()};
            const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
            glShaderSource(shader, 1, texts, nullptr);
            glDeleteShader(shader);
            glDeleteProgram(program);
            for (int frame = 0; frame < 3 && !isLegacy; ++frame) {
                drawFrame(own, 102);
            }
            glDeleteTextures(4, textures.data());
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
            own.leave();
            EXPECT_TRUE(eglDestroyContext(own.display, shared));
        }
        --running;
    };
    std::thread threads[] = {std::thread(work, 0), std::thread(work, 1), std::thread(work, 2)};
    for (int frame = 0; running > 0; ++frame) {
        if (frame % 10 == 0) {
            const std::string size = frame % 20 ? "320 180" : "240 136";
            game.root().write("/data/system/mcd/dr", std::string(GetParam().package) + ' ' + size);
        }
        for (int bind = 0; bind < 20; ++bind) {
            glBindTexture(GL_TEXTURE_2D, target);
            glBindTexture(GL_TEXTURE_2D, 0);
        }
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        ASSERT_TRUE(first.swap());
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    GLint bound = 0;
    glBindTexture(GL_TEXTURE_2D, target);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound != GLint(target), isResized) << "the target's replacement is lost, or there never was one";
    glBindTexture(GL_TEXTURE_2D, 0);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound, 0);
}

INSTANTIATE_TEST_SUITE_P(Games, EveryGameContexts, testing::ValuesIn(kEveryGame),
                         [](const auto& game) { return std::string(game.param.name); });

// Catches queries that disagree about extensions, and one that is added at another place than the first.
TEST(FrameworkGame, SeesOneListOfExtensions) {
    setenv("ORVEL_HIDE_EXTENSIONS", "GL_EXT_debug_label", 1);
    GameProcess game(kPackage, kEveryContext);
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    std::istringstream all(reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS)));
    const std::vector<std::string> listed(std::istream_iterator<std::string>(all), {});
    EXPECT_EQ(listed.at(0), "GL_EXT_debug_label");
    GLint count = 0;
    glGetIntegerv(GL_NUM_EXTENSIONS, &count);
    std::vector<std::string> indexed;
    for (GLint i = 0; i < count; ++i) {
        indexed.emplace_back(reinterpret_cast<const char*>(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i))));
    }
    EXPECT_EQ(indexed, listed);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

} // namespace
