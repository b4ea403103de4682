#include "DesktopRoot.h"

#include <cstdlib>

namespace android::desktop {

std::string underRoot(const std::string& path) {
    const char* root = std::getenv("ORVEL_ROOT");
    return root && *root ? std::string(root) + path : std::string();
}

} // namespace android::desktop
