// The factory: what depends on the application type is made here, and released here.
#pragma once

#include <cstdint>

namespace android::orvel::app {

class OrvelProcessorDataBase;
namespace module {
class OrvelProcessorModuleDataBase;
}

/**
 * @param appType an OrvelApplicationType; 0 means the type of this process
 * @return whether processes of that type are served by the framework, not by the legacy hooks
 */
bool UsingRenderController(uint32_t appType);

/** @return whether this process has the shared processor: video and short-video applications */
bool IsSharedProcessor();

/** @return an empty configuration for this process, owned by the caller; null while the process has no type */
OrvelProcessorDataBase* CreateProcessorData();
/** @param data null is ignored */
void ReleaseProcessorData(OrvelProcessorDataBase* data);

/** @param data null is ignored */
void ReleaseProcessorModuleData(module::OrvelProcessorModuleDataBase* data);

} // namespace android::orvel::app
