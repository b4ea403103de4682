#include "app/games/sgame/OrvelSGameData.h"

#include "app/games/sgame/OrvelSGameVRSModule.h"
#include "app/games/shared/OrvelSharedVRSModules.h"

namespace android::orvel::app {

static const OrvelShadingRateData::FunctionTable& functions() {
    // Never destroyed: an application may ask for a function while the process ends.
    static const auto& table = *new OrvelShadingRateData::FunctionTable{
        {module::OrvelSGameVRSModule::PROCESSOR_MODULE_TYPE,
         {"glShadingRateQCOM", "glShadingRateEXT", "glShadingRateCombinerOpsEXT", "glFramebufferShadingRateEXT",
          "glGetFragmentShadingRatesEXT"}},
        {module::OrvelSGameSharedVRSModule::PROCESSOR_MODULE_TYPE, OrvelShadingRateData::SharedVRSFunctions()},
    };
    return table;
}

OrvelSGameData::OrvelSGameData() : OrvelShadingRateData(functions()) {}

} // namespace android::orvel::app
