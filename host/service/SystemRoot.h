// The private system root of one rig: the files that a device's system keeps for the library.
#pragma once

#include <string>

namespace orvel::host {

/** Folder of the watched files, under the root. */
inline constexpr char kWatchedFolder[] = "/data/system/mcd/";

/**
 * Makes the folders of a root and the watched files that it lacks; what exists stays as it is.
 * @return false after a line on standard error when a folder or file cannot be made
 */
bool prepareRoot(const std::string& root);

} // namespace orvel::host
