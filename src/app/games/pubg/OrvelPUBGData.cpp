#include "app/games/pubg/OrvelPUBGData.h"

#include "app/games/shared/OrvelSharedVRSModules.h"

namespace android::orvel::app {

static const OrvelShadingRateData::FunctionTable& functions() {
    // Never destroyed: an application may ask for a function while the process ends.
    static const auto& table = *new OrvelShadingRateData::FunctionTable{
        {module::OrvelPUBGSharedVRSModule::PROCESSOR_MODULE_TYPE, OrvelShadingRateData::SharedVRSFunctions()},
    };
    return table;
}

OrvelPUBGData::OrvelPUBGData() : OrvelShadingRateData(functions()) {}

} // namespace android::orvel::app
