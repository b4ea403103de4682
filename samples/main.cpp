// orvel-sample: a game to see, drive and measure the library with.
#include "Game.h"
#include "Gl.h"
#include "Options.h"
#include "Picture.h"
#include "Window.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
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

} // namespace

int main(int argc, char** argv) {
    const Options options = sample::parseOptions(argc, argv);
    std::FILE* times = nullptr;
    if (!options.timesFile.empty()) {
        times = std::fopen(options.timesFile.c_str(), "w");
        if (!times) {
            sample::fail("cannot write %s", options.timesFile.c_str());
        }
        std::fputs("frame,milliseconds\n", times);
    }
    sample::Window window(options); // first: it prepares the environment, too
    std::vector<std::thread> others;
    for (int i = 1; i < options.contexts; ++i) {
        others.emplace_back(playUnseen, options);
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
        writePicture(options, window, frame);
        std::this_thread::sleep_until(start + std::chrono::milliseconds(options.minFrameMilliseconds));
        window.swap();
    }
    for (std::thread& other : others) {
        other.join();
    }
    if (times && std::fclose(times) != 0) {
        sample::fail("cannot write %s", options.timesFile.c_str());
    }
    return 0;
}
