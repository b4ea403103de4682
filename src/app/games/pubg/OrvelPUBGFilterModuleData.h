// Parameters of OrvelPUBGFilterModule, all of which are the effect manager's.
#pragma once

#include "app/OrvelEffectModuleData.h"

#include <cstdint>

namespace android::orvel::app::module {

class OrvelPUBGFilterModuleData : public OrvelEffectModuleData {
public:
    static constexpr uint32_t MODULE_DATA_TYPE = 2;
    using OrvelEffectModuleData::OrvelEffectModuleData;
};

} // namespace android::orvel::app::module
