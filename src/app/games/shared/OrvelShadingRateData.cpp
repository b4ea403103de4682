#include "app/games/shared/OrvelShadingRateData.h"

#include "app/VRSComponent.h"

namespace android::orvel::app {

const std::vector<std::string>& OrvelShadingRateData::SharedVRSFunctions() {
    static const auto& names = *new std::vector<std::string>{"glShadingRateQCOM", "glShadingRateEXT"};
    return names;
}

void OrvelShadingRateData::ColloctModuleExtensionFunctions() { ColloctExtensionFunctions(mFunctions); }

const std::vector<std::string>& OrvelShadingRateData::GetModuleExtensionFunctions(uint32_t moduleId) {
    const auto names = mFunctions.find(moduleId);
    return names == mFunctions.end() ? OrvelProcessorDataBase::GetModuleExtensionFunctions(moduleId) : names->second;
}

void OrvelShadingRateData::CheckExtensionFunctions(std::function<bool(const std::string&)> isMissing) {
    OrvelProcessorDataBase::CheckExtensionFunctions(
        [&](const std::string& name) { return VRSComponent::checkQcomExtRemoved(name, isMissing); });
}

} // namespace android::orvel::app
