// The platform's implementation of EGL: what stands between the public entries and the driver.
#pragma once

#include "Entries.h"

namespace android::rig {

/** Fills cnx->platform with entries that call cnx->egl; null where that is null. */
void fillPlatform(egl_connection_t* cnx);

/** Fills the GL queries of cnx->platform with the driver's. */
void fillPlatformQueries(egl_connection_t* cnx, const GlTable& gl);

} // namespace android::rig
