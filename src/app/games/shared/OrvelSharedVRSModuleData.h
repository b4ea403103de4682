// Parameters of the small-window modules: there are none.
#pragma once

#include "app/OrvelProcessorModuleDataBase.h"

#include <cstdint>

namespace android::orvel::app::module {

class OrvelSharedVRSModuleData : public OrvelProcessorModuleDataBase {
public:
    static constexpr uint32_t MODULE_DATA_TYPE = 0x40000;
    using OrvelProcessorModuleDataBase::OrvelProcessorModuleDataBase;
};

} // namespace android::orvel::app::module
