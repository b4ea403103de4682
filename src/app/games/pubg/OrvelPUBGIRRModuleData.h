// Parameters of OrvelPUBGIRRModule: any will do, none are read.
#pragma once

#include "app/OrvelProcessorModuleDataBase.h"

#include <cstdint>

namespace android::orvel::app::module {

class OrvelPUBGIRRModuleData : public OrvelProcessorModuleDataBase {
public:
    static constexpr uint32_t MODULE_DATA_TYPE = 1;
    using OrvelProcessorModuleDataBase::OrvelProcessorModuleDataBase;
};

} // namespace android::orvel::app::module
