// What the command line says.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace sample {

struct Size {
    int width = 0;
    int height = 0;
};

constexpr int kNever = 0; // frames are counted from 1

inline bool isReached(int frame, int from) { return from != kNever && frame >= from; }

struct Options {
    std::string game = "yuanshen";
    int frames = 120;
    Size window{1280, 720};
    bool x11 = false;
    std::string threadName = "UnityMain";
    int contexts = 1; // each on a thread of its own
    Size base{1920, 1080};
    int work = 0;
    std::string pictureFolder; // empty: no pictures
    std::set<int> pictureFrames;
    std::string namesFile; // empty: no names
    enum { NO_SHORT_CONTEXTS, LOADING, DRAWING } shortContexts = NO_SHORT_CONTEXTS;
    std::string timesFile;                            // empty: no times
    std::map<int, std::vector<std::string>> commands; // by the frame they precede
    int minFrameMilliseconds = 12;
    std::map<int, std::string> events;      // what is going on in the game, by the frame it begins with
    std::map<int, std::string> screenshots; // files, by frame
    std::optional<uint32_t> fill;           // colour that hides the scene, 0xRRGGBB
    bool multisampled = false;              // the main colour target of a battle (sgame)
    int illegalProgramAt = kNever;
    int restoreAt = kNever;
};

/** Exits: with 0 after --help, with 2 and one line on standard error when an option is wrong. */
Options parseOptions(int argc, char** argv);

} // namespace sample
