// The private system root that stands for a device's file system on a desktop.
#pragma once

#include <string>

namespace android::desktop {

/** @return path under the folder that ORVEL_ROOT names, or an empty text when there is no root */
std::string underRoot(const std::string& path);

} // namespace android::desktop
