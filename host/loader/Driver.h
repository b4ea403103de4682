// The system's real EGL and GLES, and what of it a program may see.
#pragma once

#include "Entries.h"

namespace android::rig {

/**
 * Opens the system's EGL (ORVEL_SYSTEM_EGL names another) and fills cnx->egl, its eglGetProcAddress filtered like the
 * tables: what the driver lacks is null.
 */
bool openEgl(egl_connection_t* cnx);

/**
 * Opens the system's GLES (ORVEL_SYSTEM_GLES names another) and fills the entries of GLES 2 to 3.2. Debian's libraries
 * answer every gl... name with a stub, so an extension's entry counts only if the driver lists the extension.
 * @param cnx was filled by openEgl(); gets the version of EGL
 * @return whether there is a GLES library; without one gl stays empty
 */
bool openGles(egl_connection_t* cnx, GlTable* gl);

/** From now on the program may also ask for entries of desktop GL and GLES 1, of which there is no list here. */
void allowUnknownEntries();

} // namespace android::rig
