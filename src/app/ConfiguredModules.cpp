#include "app/ConfiguredModules.h"

#include "app/OrvelProcessorDataBase.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

namespace android::orvel::app {

bool HasConfiguredModules() {
    const auto* prefs = OrvelSettings::getInstance().mPrefs;
    return prefs && prefs->mProcessorData && prefs->mProcessorData->HasAnyModuleId();
}

} // namespace android::orvel::app
