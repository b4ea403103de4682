// The loader's start and the tables that it fills then.
#pragma once

#include "Entries.h"

namespace android::rig {

extern egl_connection_t gConnection; // public entries call its platform table
extern gl_hooks_t gDriverHooks;      // the driver's entries, observed, never changed by the library
extern gl_hooks_t gHooks; // what the connection's GLES 2/3 table points to; the library writes its hooks here

/**
 * The connection, after the start if this is the first call: the driver opened, the library asked. A call that the
 * driver or the library makes during the start finds the tables as far as they are filled.
 */
egl_connection_t& connection();

} // namespace android::rig
