// Processor configuration of the PUBG package.
#pragma once

#include "app/games/shared/OrvelShadingRateData.h"

namespace android::orvel::app {

class OrvelPUBGData : public OrvelShadingRateData {
public:
    OrvelPUBGData();
};

} // namespace android::orvel::app
