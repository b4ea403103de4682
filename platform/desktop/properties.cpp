// Properties lie in the file "properties" of the system root, one NAME=VALUE a line; what this process sets itself
// is kept in memory and wins.
#include <cutils/properties.h>

#include "DesktopRoot.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <string>

namespace {

std::mutex sMutex;

std::map<std::string, std::string>& ownProperties() {
    static auto* properties = new std::map<std::string, std::string>; // outlives every static that may ask at exit
    return *properties;
}

std::string lookUp(const std::string& key) {
    {
        const std::lock_guard lock(sMutex);
        const auto own = ownProperties().find(key);
        if (own != ownProperties().end()) {
            return own->second;
        }
    }
    const std::string path = android::desktop::underRoot("/properties");
    if (path.empty()) {
        return {};
    }
    std::ifstream file(path);
    std::string line;
    std::string value;
    while (std::getline(file, line)) { // the last line of a name wins
        if (line.compare(0, key.size() + 1, key + "=") == 0) {
            value = line.substr(key.size() + 1);
        }
    }
    return value;
}

} // namespace

int property_get(const char* key, char* value, const char* defaultValue) {
    std::string found = lookUp(key);
    if (found.empty() && defaultValue) {
        found = defaultValue;
    }
    found.resize(std::min<size_t>(found.size(), PROPERTY_VALUE_MAX - 1));
    std::memcpy(value, found.c_str(), found.size() + 1);
    return static_cast<int>(found.size());
}

int property_set(const char* key, const char* value) {
    if (std::strlen(value) >= PROPERTY_VALUE_MAX) { // names may be of any length
        return -1;
    }
    const std::lock_guard lock(sMutex);
    ownProperties()[key] = value;
    return 0;
}
