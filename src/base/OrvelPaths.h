// Where the files of the system lie.
#pragma once

#include <string>

namespace android::orvel {

/**
 * @param path absolute path on a device, for example "/data/system/mcd/gameInfo"
 * @return the path itself on a device; on a desktop the same path under the folder that ORVEL_ROOT
 *         names, if it names one
 */
std::string systemPath(const char* path);

} // namespace android::orvel
