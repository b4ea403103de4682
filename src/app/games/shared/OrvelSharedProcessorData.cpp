#include "app/games/shared/OrvelSharedProcessorData.h"

#include "app/games/shared/OrvelSharedVRSModules.h"

namespace android::orvel::app {

static const OrvelShadingRateData::FunctionTable& functions() {
    // Never destroyed: an application may ask for a function while the process ends.
    static const auto& table = *new OrvelShadingRateData::FunctionTable{
        {module::OrvelCommonSharedVRSModule::PROCESSOR_MODULE_TYPE, OrvelShadingRateData::SharedVRSFunctions()}};
    return table;
}

OrvelSharedProcessorData::OrvelSharedProcessorData() : OrvelShadingRateData(functions()) {}

} // namespace android::orvel::app
