#include "app/OrvelApplicationUtils.h"

#include "app/OrvelProcessorDataBase.h"
#include "app/OrvelProcessorModuleDataBase.h"
#include "settings/OrvelSettings.h"

#include <unordered_set>

namespace android::orvel::app {

namespace {

uint32_t ownType() { return OrvelSettings::getInstance().mApplicationType; }

} // namespace

bool UsingRenderController(uint32_t appType) {
    static const std::unordered_set<uint32_t> types = {APP_TYPE_SGAME, APP_TYPE_PUBG,  APP_TYPE_QQLIVE,
                                                       APP_TYPE_7,     APP_TYPE_AWEME, APP_TYPE_BILI};
    return types.count(appType != APP_TYPE_NONE ? appType : ownType()) != 0;
}

bool IsSharedProcessor() {
    static const std::unordered_set<uint32_t> types = {APP_TYPE_QQLIVE, APP_TYPE_7, APP_TYPE_AWEME, APP_TYPE_BILI};
    return types.count(ownType()) != 0;
}

OrvelProcessorDataBase* CreateProcessorData() {
    return ownType() == APP_TYPE_NONE ? nullptr : new OrvelProcessorDataBase;
}

void ReleaseProcessorData(OrvelProcessorDataBase* data) { delete data; }

void ReleaseProcessorModuleData(module::OrvelProcessorModuleDataBase* data) { delete data; }

} // namespace android::orvel::app
