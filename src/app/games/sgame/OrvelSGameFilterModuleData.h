// Parameters of OrvelSGameFilterModule.
#pragma once

#include "app/OrvelEffectModuleData.h"
#include "base/OrvelPatternList.h"

#include <cstdint>
#include <string>
#include <vector>

namespace android::orvel::app::module {

class OrvelSGameFilterModuleData : public OrvelEffectModuleData {
public:
    static constexpr uint32_t MODULE_DATA_TYPE = 2;

    explicit OrvelSGameFilterModuleData(const Json::Value& json);

    // The fifth and the sixth part of "effect_Binary", labels of textures.
    OrvelPatternList skipTextures;           // the draw behind the bind of one does not start the filter
    std::vector<std::string> resultPatterns; // of result screens
};

} // namespace android::orvel::app::module
