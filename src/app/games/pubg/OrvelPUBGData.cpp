#include "app/games/pubg/OrvelPUBGData.h"

#include "app/games/shared/OrvelSharedVRSModules.h"

#include <vector>

namespace android::orvel::app {

static const OrvelShadingRateData::FunctionTable& functions() {
    // Never destroyed: an application may ask for a function while the process ends.
    static const auto& table = *new OrvelShadingRateData::FunctionTable{
        {module::OrvelPUBGSharedVRSModule::PROCESSOR_MODULE_TYPE, OrvelShadingRateData::SharedVRSFunctions()},
    };
    return table;
}

OrvelPUBGData::OrvelPUBGData()
    : OrvelShadingRateData(functions()),
      blockingLabels(std::vector<std::string>{"LOGIN_image_mengban_xiabu", "LoadingUI_Atlas", "TMode_Result_MVP_Logo",
                                              "TeamCompetiton_Result_TitleBg", "Results_ClassicMode"}),
      triggerLabels(std::vector<std::string>{"T_CrossHairNormal"}) {}

} // namespace android::orvel::app
