// Extensions that the program and the library are not to see: those that ORVEL_HIDE_EXTENSIONS names.
#pragma once

#include <string>
#include <vector>

namespace android::rig {

/** @return their names; read anew each time */
std::vector<std::string> hiddenExtensions();

bool isHiddenExtension(const std::string& name);

} // namespace android::rig
