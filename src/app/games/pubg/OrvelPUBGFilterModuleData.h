// Parameters of OrvelPUBGFilterModule: none are read.
#pragma once

#include "app/OrvelProcessorModuleDataBase.h"

#include <cstdint>

namespace android::orvel::app::module {

class OrvelPUBGFilterModuleData : public OrvelProcessorModuleDataBase {
public:
    static constexpr uint32_t MODULE_DATA_TYPE = 2;
    using OrvelProcessorModuleDataBase::OrvelProcessorModuleDataBase;
};

} // namespace android::orvel::app::module
