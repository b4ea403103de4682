#include "HiddenExtensions.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>

namespace android::rig {

std::vector<std::string> hiddenExtensions() {
    const char* names = std::getenv("ORVEL_HIDE_EXTENSIONS");
    std::istringstream words(names ? names : "");
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

bool isHiddenExtension(const std::string& name) {
    const std::vector<std::string> hidden = hiddenExtensions();
    return std::find(hidden.begin(), hidden.end(), name) != hidden.end();
}

} // namespace android::rig
