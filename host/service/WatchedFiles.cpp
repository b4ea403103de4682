// orvel-set: rewrites a watched file of a root, as a device's system does while a game runs.
#include "SystemRoot.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Values = std::vector<std::string>;

constexpr char kUsage[] = "usage: orvel-set ROOT NAME VALUE...\n"
                          "  scene ID                        the game's scene\n"
                          "  quality LEVEL                   its picture quality\n"
                          "  picture-key KEY VALUE           any of its picture settings\n"
                          "  vrs-level LEVEL                 shading level\n"
                          "  window small|full               small-window mode\n"
                          "  filter TYPE [--strength PERCENT] [--dark-edge]\n"
                          "                                  colour filter; 0 for none\n"
                          "  info LINE                       one line of the game-information file, as it stands\n"
                          "  dr WIDTHxHEIGHT                 size of the game's render targets\n"
                          "  sr 0|1                          super resolution off or on\n"
                          "  dfi MILLISECONDS                how often a frame is shown again; 0 for never\n";

bool isNumber(const std::string& text) {
    char* end = nullptr;
    std::strtol(text.c_str(), &end, 10);
    return !text.empty() && *end == '\0';
}

/** Values for the game-information file: what line they make for a package, and which older line it replaces. */
struct Setting {
    size_t values;
    std::function<std::string(const std::string& package, const Values&)> line;
    size_t keyWords; // a line that agrees in so many first words is replaced
};

const std::map<std::string, Setting> kSettings = {
    {"scene", {1, [](const auto& package, const auto& v) { return "1 " + package + " " + v[0]; }, 2}},
    {"quality", {1, [](const auto& package, const auto& v) { return "2 " + package + " 8 " + v[0]; }, 3}},
    {"picture-key",
     {2, [](const auto& package, const auto& v) { return "2 " + package + " " + v[0] + " " + v[1]; }, 3}},
    {"vrs-level", {1, [](const auto& package, const auto& v) { return "3 " + package + " " + v[0]; }, 2}},
    {"window", {1, [](const auto& package, const auto& v) { return "4 " + package + " " + v[0]; }, 2}},
    {"filter",
     {3, [](const auto& package, const auto& v) { return "5 " + package + " " + v[0] + " " + v[1] + " " + v[2]; }, 2}},
};

std::string firstWords(const std::string& line, size_t count) {
    std::istringstream words(line);
    std::string word;
    std::string joined;
    for (size_t i = 0; i < count && words >> word; ++i) {
        joined += word + " ";
    }
    return joined;
}

int usage(const std::string& problem) {
    std::fprintf(stderr, "orvel-set: %s\n%s", problem.c_str(), kUsage);
    return 2;
}

int writeFile(const std::string& path, const std::string& content) {
    if (!orvel::host::rewrite(path, content)) {
        std::fprintf(stderr, "orvel-set: cannot write %s: %s\n", path.c_str(), strerror(errno));
        return 1;
    }
    return 0;
}

int setGameInfo(const std::string& root, const std::string& line, size_t keyWords) {
    const std::string path = root + orvel::host::kWatchedFolder + "gameInfo";
    std::string content;
    std::ifstream file(path);
    for (std::string old; std::getline(file, old);) {
        if (!old.empty() && firstWords(old, keyWords) != firstWords(line, keyWords)) {
            content += old + "\n";
        }
    }
    const int status = writeFile(path, content + line + "\n");
    if (status != 0) {
        return status;
    }
    std::printf("%s: %s\n", path.c_str(), line.c_str());
    return 0;
}

/** A file of one line: the package and its values. */
int setLine(const std::string& root, const std::string& file, const std::string& line) {
    const std::string path = root + orvel::host::kWatchedFolder + file;
    const int status = writeFile(path, line + "\n");
    if (status == 0) {
        std::printf("%s: %s\n", path.c_str(), line.c_str());
    }
    return status;
}

/** Brings a filter's options into the places that its line has for them. @return false when they are wrong */
bool completeFilter(Values* values) {
    std::string strength = "100";
    std::string darkEdge = "0";
    for (size_t i = 1; i < values->size(); ++i) {
        if ((*values)[i] == "--dark-edge") {
            darkEdge = "1";
        } else if ((*values)[i] == "--strength" && i + 1 < values->size() && isNumber((*values)[i + 1])) {
            strength = (*values)[++i];
        } else {
            return false;
        }
    }
    *values = {values->front(), strength, darkEdge};
    return true;
}

int setResolution(const std::string& root, const std::string& package, const std::string& size) {
    int width = 0;
    int height = 0;
    char rest = 0;
    if (std::sscanf(size.c_str(), "%dx%d%c", &width, &height, &rest) != 2 || width < 1 || height < 1) {
        return usage("not a size: " + size);
    }
    return setLine(root, "dr", package + " " + std::to_string(width) + " " + std::to_string(height));
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        return usage("too few arguments");
    }
    const std::string root = argv[1];
    const std::string name = argv[2];
    Values values(argv + 3, argv + argc);
    if (!orvel::host::prepareRoot(root)) {
        return 1;
    }
    if (name == "info") {
        std::string line;
        for (const std::string& value : values) {
            line += (line.empty() ? "" : " ") + value;
        }
        return setGameInfo(root, line, 2);
    }
    const std::string package = orvel::host::packageOf(root);
    if (package.empty()) {
        return usage("no package: " + root + "/orvel/package is missing or empty (orvel run writes it)");
    }
    if (name == "dr") {
        return values.size() == 1 ? setResolution(root, package, values[0]) : usage("dr takes WIDTHxHEIGHT");
    }
    if (name == "sr") {
        const bool isSwitch = values.size() == 1 && (values[0] == "0" || values[0] == "1");
        return isSwitch ? setLine(root, name, package + " " + values[0]) : usage("sr takes 0 or 1");
    }
    if (name == "dfi") {
        const bool isInterval = values.size() == 1 && isNumber(values[0]) && values[0][0] != '-';
        return isInterval ? setLine(root, name, package + " " + values[0]) : usage("dfi takes milliseconds");
    }
    const auto setting = kSettings.find(name);
    if (setting == kSettings.end()) {
        return usage("unknown name " + name);
    }
    if (name == "filter" && !completeFilter(&values)) {
        return usage("filter takes TYPE [--strength PERCENT] [--dark-edge]");
    }
    if (values.size() != setting->second.values) {
        return usage(name + " takes " + std::to_string(setting->second.values) + " value(s)");
    }
    if (name == "window") {
        if (values[0] != "small" && values[0] != "full") {
            return usage("window takes small or full");
        }
        values[0] = values[0] == "small" ? "1" : "0";
    }
    for (const std::string& value : values) {
        if (!isNumber(value)) {
            return usage("not a number: " + value);
        }
    }
    return setGameInfo(root, setting->second.line(package, values), setting->second.keyWords);
}
