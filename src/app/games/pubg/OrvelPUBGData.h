// Processor configuration of the PUBG package.
#pragma once

#include "app/games/shared/OrvelShadingRateData.h"
#include "base/OrvelPatternList.h"

#include <string>

namespace android::orvel::app {

/** By which textures the processor recognises the frame's parts. The payload is ignored: it has nothing to say here. */
class OrvelPUBGData : public OrvelShadingRateData {
public:
    OrvelPUBGData();

    const std::string sceneColorLabel = "SceneColorMobile"; // of the texture that the 3D scene is drawn to
    const OrvelPatternList blockingLabels;                  // login, loading and result screens
    const OrvelPatternList triggerLabels;                   // where the head-up display begins
};

} // namespace android::orvel::app
