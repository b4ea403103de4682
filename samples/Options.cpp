#include "Options.h"

#include "Game.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace sample {

namespace {

constexpr char kUsage[] =
    R"(usage: orvel-sample [options]
  A game to drive the library with: draws a scene into render targets of the base size, copies the last one
  to the window (no display is needed) and draws a sharp user interface over it. What a frame looks
  like depends on its number alone.

  --game NAME              whose habits of drawing: yuanshen, hkrpg, harrypotter, sgame, pubg, video
                           (yuanshen)
  --frames N               frames to draw (120)
  --window WxH             size of the window (1280x720)
  --x11                    a window on the X server that DISPLAY names
  --thread-name NAME       name of the thread that owns the window (UnityMain, as the engine calls it)
  --contexts N             draw on so many threads at once, each with a window and a context of its own; pictures,
                           times and commands are the first one's (1)
  --base WxH               size of the render targets (1920x1080)
  --work N                 rounds of extra work per pixel of a render target, at most 60000 (0)
  --png DIR                where pictures go, as frame-0001.png
  --png-frames LIST        which frames, as 1,60,120; counted from 1
  --csv FILE               time of every frame: its number and milliseconds until the driver finished
  --names FILE             every 100 frames: how many GL objects of each kind there are, and the newest name
  --short-contexts load|draw
                           make contexts on another thread, one after the other, load textures or draw a few frames with
                           each and destroy it
  --at FRAME:COMMAND       run COMMAND in a shell before that frame; may be given several times.
                           The library looks at its files when a frame ends, so what COMMAND changes
                           shows from FRAME + 1 on.
  --min-frame-ms N         let a frame take at least so long (12, as the library looks every 10 ms at most)
  --event-at FRAME:EVENT   from that frame on draw as the game does in a boss fight (yuanshen: boss), when it moves
                           the player (yuanshen, harrypotter: teleport), when it starts (yuanshen: launch), in a
                           place (hkrpg: city, x2, x21, square), in its phases beside the lobby (sgame: heroes,
                           loading, battle, battle with a masked clear: masked, result), when its frame goes over to
                           the interface in one of its ways (pubg: discard, resolve, crosshair, loading), or none of
                           these: none; may be given several times
  --fill RRGGBB            hide the scene behind this colour, so that pictures show the interface alone
  --screenshot FRAME:FILE  read the finished picture back at the base size, without the interface, into a PNG file
  --multisampled           draw battles into a multisampled texture where the driver can (sgame)
  --illegal-program-at N   from frame N on use the program "Dynamic Sky/Cube Ground Cloud" (yuanshen)
  --restore-at N           from frame N on bind the texture "CameraDesc"
  --help                   this text
)";

[[noreturn]] __attribute__((format(printf, 1, 2))) void wrong(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::fputs("orvel-sample: ", stderr);
    std::vfprintf(stderr, format, arguments);
    std::fputs(" (--help lists the options)\n", stderr);
    va_end(arguments);
    std::exit(2);
}

bool parseNumber(std::string_view text, int least, int most, int* number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *number);
    return error == std::errc() && end == text.data() + text.size() && *number >= least && *number <= most;
}

int number(const char* option, std::string_view text, int least, int most) {
    int value = 0;
    if (!parseNumber(text, least, most, &value)) {
        wrong("%s wants a number from %d to %d, not \"%.*s\"", option, least, most, static_cast<int>(text.size()),
              text.data());
    }
    return value;
}

Size size(const char* option, std::string_view text) {
    constexpr int kLargest = 8192;
    Size value;
    const size_t cross = text.find('x');
    if (cross == std::string_view::npos || !parseNumber(text.substr(0, cross), 1, kLargest, &value.width) ||
        !parseNumber(text.substr(cross + 1), 1, kLargest, &value.height)) {
        wrong("%s wants a size like 1280x720, at most %d each way, not \"%s\"", option, kLargest, text.data());
    }
    return value;
}

std::set<int> frameList(const char* option, std::string_view text, int most) {
    std::set<int> frames;
    for (;;) {
        const size_t comma = text.find(',');
        frames.insert(number(option, text.substr(0, comma), 1, most));
        if (comma == std::string_view::npos) {
            return frames;
        }
        text.remove_prefix(comma + 1);
    }
}

uint32_t colour(const char* option, std::string_view text) {
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (error != std::errc() || end != text.data() + text.size() || text.size() != 6) {
        wrong("%s wants a colour like ff8000, not \"%s\"", option, text.data());
    }
    return value;
}

/** @param what stands behind the colon */
std::pair<int, std::string> atFrame(const char* option, const char* what, std::string_view text, int most) {
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon + 1 == text.size()) {
        wrong("%s wants FRAME:%s, not \"%s\"", option, what, text.data());
    }
    return {number(option, text.substr(0, colon), 1, most), std::string(text.substr(colon + 1))};
}

template <typename T>
int lastFrame(const std::map<int, T>& byFrame) {
    return byFrame.empty() ? 0 : byFrame.rbegin()->first;
}

void checkTogether(const Options& options) {
    if (options.pictureFolder.empty() != options.pictureFrames.empty()) {
        wrong("--png and --png-frames belong together");
    }
    const int lastPicture = options.pictureFrames.empty() ? 0 : *options.pictureFrames.rbegin();
    const std::pair<const char*, int> frames[] = {{"--png-frames", lastPicture},
                                                  {"--at", lastFrame(options.commands)},
                                                  {"--event-at", lastFrame(options.events)},
                                                  {"--screenshot", lastFrame(options.screenshots)},
                                                  {"--illegal-program-at", options.illegalProgramAt},
                                                  {"--restore-at", options.restoreAt}};
    for (const auto& [option, frame] : frames) {
        if (frame > options.frames) {
            wrong("%s names frame %d, the last one is %d", option, frame, options.frames);
        }
    }
    if (options.x11 && (options.contexts > 1 || options.shortContexts)) {
        wrong("more contexts need windows without a display");
    }
    if (options.game != "yuanshen" && options.illegalProgramAt != kNever) {
        wrong("--illegal-program-at is a habit of yuanshen");
    }
}

} // namespace

Options parseOptions(int argc, char** argv) {
    constexpr int kMostFrames = 1000000;
    constexpr int kMostWork = 60000; // llvmpipe ends a shader's loop after 65535 rounds
    constexpr int kMostContexts = 16;
    constexpr int kLongestFrame = 10000;
    Options options;
    for (int i = 1; i < argc; i += 2) {
        const std::string_view option = argv[i];
        if (option == "--help") {
            std::fputs(kUsage, stdout);
            std::exit(0);
        }
        const std::pair<const char*, bool*> flags[] = {{"--x11", &options.x11},
                                                       {"--multisampled", &options.multisampled}};
        const auto flag =
            std::find_if(std::begin(flags), std::end(flags), [&](const auto& known) { return option == known.first; });
        if (flag != std::end(flags)) {
            *flag->second = true;
            --i; // there is no value
            continue;
        }
        if (i + 1 == argc) {
            wrong("unknown option or no value behind it: %s", argv[i]);
        }
        const char* value = argv[i + 1];
        if (option == "--game") {
            options.game = value;
            if (!isGame(options.game)) {
                wrong("no game \"%s\"", value);
            }
        } else if (option == "--frames") {
            options.frames = number(argv[i], value, 1, kMostFrames);
        } else if (option == "--window") {
            options.window = size(argv[i], value);
        } else if (option == "--thread-name") {
            options.threadName = value;
        } else if (option == "--contexts") {
            options.contexts = number(argv[i], value, 1, kMostContexts);
        } else if (option == "--base") {
            options.base = size(argv[i], value);
        } else if (option == "--work") {
            options.work = number(argv[i], value, 0, kMostWork);
        } else if (option == "--png") {
            options.pictureFolder = value;
        } else if (option == "--png-frames") {
            options.pictureFrames = frameList(argv[i], value, kMostFrames);
        } else if (option == "--csv") {
            options.timesFile = value;
        } else if (option == "--names") {
            options.namesFile = value;
        } else if (option == "--short-contexts") {
            if (std::string_view(value) != "load" && std::string_view(value) != "draw") {
                wrong("--short-contexts is load or draw, not \"%s\"", value);
            }
            options.shortContexts = *value == 'l' ? Options::LOADING : Options::DRAWING;
        } else if (option == "--at") {
            const auto [frame, command] = atFrame(argv[i], "COMMAND", value, kMostFrames);
            options.commands[frame].push_back(command);
        } else if (option == "--event-at") {
            options.events.insert(atFrame(argv[i], "EVENT", value, kMostFrames));
        } else if (option == "--screenshot") {
            options.screenshots.insert(atFrame(argv[i], "FILE", value, kMostFrames));
        } else if (option == "--min-frame-ms") {
            options.minFrameMilliseconds = number(argv[i], value, 0, kLongestFrame);
        } else if (option == "--fill") {
            options.fill = colour(argv[i], value);
        } else if (option == "--illegal-program-at") {
            options.illegalProgramAt = number(argv[i], value, 1, kMostFrames);
        } else if (option == "--restore-at") {
            options.restoreAt = number(argv[i], value, 1, kMostFrames);
        } else {
            wrong("unknown option %s", argv[i]);
        }
    }
    checkTogether(options);
    return options;
}

} // namespace sample
