// Processor configuration of the SGame package.
#pragma once

#include "app/games/shared/OrvelShadingRateData.h"

namespace android::orvel::app {

class OrvelSGameData : public OrvelShadingRateData {
public:
    OrvelSGameData();
};

} // namespace android::orvel::app
