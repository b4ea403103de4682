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

void writePicture(const Options& options, int frame) {
    if (options.pictureFrames.count(frame) == 0) {
        return;
    }
    char name[32];
    std::snprintf(name, sizeof(name), "/frame-%04d.png", frame);
    sample::writePicture(options.pictureFolder + name, options.window);
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
    sample::Window window(options.window);
    const auto game = sample::makeGame(options);
    for (int frame = 1; frame <= options.frames; ++frame) {
        runCommands(options, frame);
        const auto start = Clock::now();
        game->drawFrame(frame);
        glFinish();
        const std::chrono::duration<double, std::milli> taken = Clock::now() - start;
        if (times) {
            std::fprintf(times, "%d,%.3f\n", frame, taken.count());
        }
        writePicture(options, frame);
        std::this_thread::sleep_until(start + std::chrono::milliseconds(options.minFrameMilliseconds));
        window.swap();
    }
    if (times && std::fclose(times) != 0) {
        sample::fail("cannot write %s", options.timesFile.c_str());
    }
    return 0;
}
