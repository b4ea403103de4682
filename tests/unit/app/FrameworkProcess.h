// A process of the framework: a type, and modules that the tuning service configured.
#pragma once

#include "app/OrvelApplicationUtils.h"
#include "app/OrvelProcessorDataBase.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

/** Once per process. @return the active configuration */
inline android::orvel::app::OrvelProcessorDataBase& beFramework(android::OrvelApplicationType type, uint32_t modules) {
    auto& settings = android::orvel::OrvelSettings::getInstance();
    settings.mApplicationType = type;
    settings.mPrefs = new com::velmor::ravelo::OrvelPrefs;
    settings.mPrefs->mEnabled = true;
    android::orvel::app::InitProcessorCreateInfo();
    settings.mPrefs->mProcessorData->InitModuleIdArray(modules);
    return *settings.mPrefs->mProcessorData;
}

constexpr uint32_t kSharedShading = 262144; // the module that every processor can carry
