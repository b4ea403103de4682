// What the driver lists as extensions, asked before the program has a context.
#pragma once

#include "Entries.h"

#include <string>

namespace android::rig {

/**
 * Makes a throw-away GLES context on a display without windows and asks it for GL_EXTENSIONS.
 * @param cnx egl is used, the version is written
 * @return the driver's list, words separated by blanks; empty, with one line in the log, when it cannot be had
 */
std::string askForExtensions(egl_connection_t* cnx, const GlTable& gl);

} // namespace android::rig
