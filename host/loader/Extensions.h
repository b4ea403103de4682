// The driver's extension strings, as the program and the library are to see them: some hidden, some added.
#pragma once

#include "Entries.h"

#include <string>

namespace android::rig {

/**
 * Takes the extensions that ORVEL_HIDE_EXTENSIONS names, separated by blanks, out of a driver's list and adds those of
 * the stand-ins.
 * @param list words separated by blanks
 */
std::string editExtensions(const std::string& list);

/**
 * Lets the driver's extension strings, in whole and one by one, answer so. Does nothing when there is nothing to edit.
 */
void editExtensionStrings(GlTable* gl);

} // namespace android::rig
