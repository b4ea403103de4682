#include "SystemRoot.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace orvel::host {

namespace {

constexpr char kNobody[] = "nobody"; // no package's name has it

/** @return the first word of a file; empty if there is none */
std::string firstWord(const std::string& path) {
    std::string word;
    std::ifstream(path) >> word;
    return word;
}

/**
 * Makes a watched file that is missing, and one whose line is an older game's begin anew. A file that stays as it is
 * is not opened for writing: whoever watches it would take that for a change.
 */
bool begin(const std::string& root, const char* name, const std::string& content) {
    const std::string path = root + kWatchedFolder + name;
    const std::string word = firstWord(path);
    const std::string package = packageOf(root);
    const bool isOwn = !word.empty() && (package.find(word) != std::string::npos || word == kNobody);
    const bool stays = content.empty() || package.empty() || isOwn;
    if ((std::filesystem::exists(path) && stays) || rewrite(path, content)) {
        return true;
    }
    std::fprintf(stderr, "orvel: cannot write %s: %s\n", path.c_str(), std::strerror(errno));
    return false;
}

} // namespace

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
    // Switches that a game watches only if it finds itself in them at its start: they begin with "off". The request for
    // a resolution begins with one for somebody else: a game that finds none at all logs that at each look.
    const std::string package = packageOf(root);
    const std::string off = package.empty() ? "" : package + " 0\n";
    return begin(root, "gameInfo", "") && begin(root, "dr", kNobody + std::string(" 0 0\n")) &&
           begin(root, "sr", off) && begin(root, "dfi", off);
}

std::string packageOf(const std::string& root) {
    std::string package;
    std::getline(std::ifstream(root + "/orvel/package") >> std::ws, package);
    return package;
}

bool rewrite(const std::string& path, const std::string& content) {
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) {
        return false;
    }
    const bool written = write(fd, content.data(), content.size()) == static_cast<ssize_t>(content.size()) &&
                         ftruncate(fd, static_cast<off_t>(content.size())) == 0;
    return close(fd) == 0 && written;
}

} // namespace orvel::host
