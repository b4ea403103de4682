// orvel-sample: a game to see, drive and measure the library with.
#include "Game.h"
#include "Gl.h"
#include "Options.h"
#include "Picture.h"
#include "Window.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

namespace {

using sample::Options;
using Clock = std::chrono::steady_clock;

void runCommands(const Options& options, int frame) {
    const auto commands = options.commands.find(frame);
    if (commands == options.commands.end()) {
        return;
    }
    for (const std::string& command : commands->second) {
        const int status = std::system(command.c_str());
        if (status != 0) {
            sample::fail("the command before frame %d ended with status 0x%x: %s", frame, status, command.c_str());
        }
    }
}

/** The game makes no GL error of its own: what stands here comes from elsewhere. */
void reportErrors(int frame) {
    for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError()) {
        std::fprintf(stderr, "orvel-sample: frame %d: GL error 0x%04x\n", frame, error);
    }
}

void writePicture(const Options& options, const sample::Window& window, int frame) {
    if (options.pictureFrames.count(frame) == 0) {
        return;
    }
    char name[32];
    std::snprintf(name, sizeof(name), "/frame-%04d.png", frame);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
    sample::writePicture(options.pictureFolder + name, window.size());
}

std::FILE* openList(const std::string& path, const char* header) {
    if (path.empty()) {
        return nullptr;
    }
    std::FILE* file = std::fopen(path.c_str(), "w");
    if (!file) {
        sample::fail("cannot write %s", path.c_str());
    }
    std::fputs(header, file);
    return file;
}

void closeList(std::FILE* file, const std::string& path) {
    if (file && std::fclose(file) != 0) {
        sample::fail("cannot write %s", path.c_str());
    }
}

template <typename Generate, typename Delete, typename Is>
void writeObjects(std::FILE* file, Generate generate, Delete destroy, Is is) {
    GLuint last = 0;
    generate(1, &last);
    int alive = 0;
    for (GLuint name = 1; name < last; ++name) {
        alive += is(name) == GL_TRUE;
    }
    destroy(1, &last);
    std::fprintf(file, ",%d,%u", alive, last);
}

/** How many objects there are, and how many were ever made: the driver counts names upwards. */
void writeNames(std::FILE* file, int frame) {
    constexpr int kPeriod = 100;
    if (!file || frame % kPeriod != 0) {
        return;
    }
    std::fprintf(file, "%d", frame);
    writeObjects(file, glGenTextures, glDeleteTextures, glIsTexture);
    writeObjects(file, glGenBuffers, glDeleteBuffers, glIsBuffer);
    writeObjects(file, glGenFramebuffers, glDeleteFramebuffers, glIsFramebuffer);
    writeObjects(file, glGenVertexArrays, glDeleteVertexArrays, glIsVertexArray);
    writeObjects(
        file, [](GLsizei, GLuint* program) { *program = glCreateProgram(); },
        [](GLsizei, const GLuint* program) { glDeleteProgram(*program); }, glIsProgram);
    std::fputc('\n', file);
    std::fflush(file);
}

/** One more context, on the calling thread; nobody looks at its pictures. */
void playUnseen(Options options) {
    options.commands.clear();
    options.screenshots.clear();
    sample::Window window(options);
    const auto game = sample::makeGame(options);
    for (int frame = 1; frame <= options.frames; ++frame) {
        const auto start = Clock::now();
        game->drawFrame(frame);
        reportErrors(frame);
        std::this_thread::sleep_until(start + std::chrono::milliseconds(options.minFrameMilliseconds));
        window.swap();
    }
}

/** Contexts that live shortly: an engine's loading threads have them, an app's views, too. */
void playShortly(Options options, const std::atomic<bool>& ended) {
    options.frames = 20;
    while (!ended.load(std::memory_order_relaxed)) {
        if (options.shortContexts == Options::DRAWING) {
            playUnseen(options);
            continue;
        }
        const sample::Window window(options);
        const GLuint texture = sample::makeMaterial("Loaded");
        glFinish();
        glDeleteTextures(1, &texture);
        reportErrors(0);
        std::this_thread::sleep_for(std::chrono::milliseconds(options.minFrameMilliseconds));
    }
}

} // namespace

int main(int argc, char** argv) {
    const Options options = sample::parseOptions(argc, argv);
    std::FILE* times = openList(options.timesFile, "frame,milliseconds\n");
    std::FILE* names = openList(
        options.namesFile, "frame,textures,last,buffers,last,framebuffers,last,vertex arrays,last,programs,last\n");
    sample::Window window(options); // first: it prepares the environment, too
    std::vector<std::thread> others;
    for (int i = 1; i < options.contexts; ++i) {
        others.emplace_back(playUnseen, options);
    }
    std::atomic<bool> ended = false;
    if (options.shortContexts != Options::NO_SHORT_CONTEXTS) {
        others.emplace_back(playShortly, options, std::cref(ended));
    }
    const auto game = sample::makeGame(options);
    for (int frame = 1; frame <= options.frames; ++frame) {
        runCommands(options, frame);
        const auto start = Clock::now();
        game->drawFrame(frame);
        glFinish();
        reportErrors(frame);
        const std::chrono::duration<double, std::milli> taken = Clock::now() - start;
        if (times) {
            std::fprintf(times, "%d,%.3f\n", frame, taken.count());
        }
        writeNames(names, frame);
        writePicture(options, window, frame);
        std::this_thread::sleep_until(start + std::chrono::milliseconds(options.minFrameMilliseconds));
        window.swap();
    }
    ended.store(true, std::memory_order_relaxed);
    for (std::thread& other : others) {
        other.join();
    }
    closeList(times, options.timesFile);
    closeList(names, options.namesFile);
    return 0;
}
