// The private system root of one rig: the files that a device's system keeps for the library.
#pragma once

#include <string>

namespace orvel::host {

/** Folder of the watched files, under the root. */
inline constexpr char kWatchedFolder[] = "/data/system/mcd/";

/** @return the package that runs with a root, which `orvel run` writes there; empty when nothing does */
std::string packageOf(const std::string& root);

/**
 * Rewrites a file in place: it is watched by its inode, so it must not be replaced by a new one. The new text is
 * written over the old before the rest is cut off, so a reader in between never finds an empty file.
 */
bool rewrite(const std::string& path, const std::string& content);

/**
 * Makes the folders of a root and the watched files that it lacks; what exists stays as it is, but for switches that
 * name another package than the one that runs.
 * @return false after a line on standard error when a folder or file cannot be made
 */
bool prepareRoot(const std::string& root);

} // namespace orvel::host
