// Whether there is anything for the framework to do.
#pragma once

namespace android::orvel::app {

/**
 * @return whether the tuning service configured a module for this process that is still there. The empty configuration
 *         that stands in for a missing one does not count. Any thread; takes no lock.
 */
bool HasConfiguredModules();

} // namespace android::orvel::app
