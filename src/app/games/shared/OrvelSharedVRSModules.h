// The small-window module of each processor. They differ in the processor that they serve.
#pragma once

#include "app/games/shared/OrvelSharedVRSModuleBase.h"

namespace android::orvel::app::module {

class OrvelPUBGSharedVRSModule : public OrvelSharedVRSModuleBase<OrvelPUBGSharedVRSModule> {
public:
    static constexpr uint32_t PROCESSOR_MODULE_TYPE = 0x40000;
    using OrvelSharedVRSModuleBase::OrvelSharedVRSModuleBase;
};

class OrvelSGameSharedVRSModule : public OrvelSharedVRSModuleBase<OrvelSGameSharedVRSModule> {
public:
    static constexpr uint32_t PROCESSOR_MODULE_TYPE = 0x40000;
    using OrvelSharedVRSModuleBase::OrvelSharedVRSModuleBase;
};

class OrvelCommonSharedVRSModule : public OrvelSharedVRSModuleBase<OrvelCommonSharedVRSModule> {
public:
    static constexpr uint32_t PROCESSOR_MODULE_TYPE = 0x40000;
    using OrvelSharedVRSModuleBase::OrvelSharedVRSModuleBase;
};

} // namespace android::orvel::app::module
