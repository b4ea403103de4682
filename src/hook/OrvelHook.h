// Installs the framework's EGL and platform hooks.
#pragma once

#include <EGL/egldefs.h>

namespace android::orvel::hook {

/**
 * Chooses between installation at early initialisation (false) and as a late debug layer (true). Always false: the
 * late path is kept for those who debug the loader, and switched off.
 */
constexpr bool EnableDebugOrvelLayer() { return false; }

/**
 * Installs the framework's hooks when the process's configuration holds a module. No module exists yet, so there is
 * nothing to install.
 */
inline void RegisterHookedFunctions(egl_connection_t*) {}

} // namespace android::orvel::hook
