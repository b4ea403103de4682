#include "base/OrvelPaths.h"

#include <cstdlib>

namespace android::orvel {

std::string systemPath(const char* path) {
#ifndef __ANDROID__
    if (const char* root = std::getenv("ORVEL_ROOT"); root && *root) {
        return std::string(root) + path;
    }
#endif
    return path;
}

} // namespace android::orvel
