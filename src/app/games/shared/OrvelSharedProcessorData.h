// Processor configuration of the games that need no analysis of their own.
#pragma once

#include "app/games/shared/OrvelShadingRateData.h"

namespace android::orvel::app {

/** The payload is ignored. */
class OrvelSharedProcessorData : public OrvelShadingRateData {
public:
    OrvelSharedProcessorData();
};

} // namespace android::orvel::app
