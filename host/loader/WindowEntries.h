// The platform's implementation of the EGL entries that know windows.
#pragma once

#include "Entries.h"

namespace android::rig {

/** Replaces in a filled platform table what has more to do for the rig's windows than to translate a surface. */
void fillWindowEntries(platform_impl_t* platform);

} // namespace android::rig
