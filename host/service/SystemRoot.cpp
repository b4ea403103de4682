#include "SystemRoot.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

namespace orvel::host {

bool prepareRoot(const std::string& root) {
    try {
        for (const char* folder :
             {"/data/system/mcd", "/vendor/odm/etc/game/effect", "/dev/binder", "/proc", "/orvel"}) {
            std::filesystem::create_directories(root + folder);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvel: %s\n", error.what());
        return false;
    }
    for (const char* file : {"gameInfo", "dr", "sr", "dfi"}) {
        const std::string path = root + kWatchedFolder + file;
        if (!std::ofstream(path, std::ios::app)) {
            std::fprintf(stderr, "orvel: cannot write %s\n", path.c_str());
            return false;
        }
    }
    return true;
}

} // namespace orvel::host
