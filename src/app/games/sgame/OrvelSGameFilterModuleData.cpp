#include "app/games/sgame/OrvelSGameFilterModuleData.h"

namespace android::orvel::app::module {

OrvelSGameFilterModuleData::OrvelSGameFilterModuleData(const Json::Value& json) : OrvelEffectModuleData(json) {
    constexpr size_t kSkipTextures = 4;
    constexpr size_t kResultPatterns = 5;
    if (valid && mBinaryParts.size() > kSkipTextures) {
        skipTextures.append(OrvelPatternList::split(mBinaryParts[kSkipTextures]));
    }
    if (valid && mBinaryParts.size() > kResultPatterns) {
        resultPatterns = OrvelPatternList::split(mBinaryParts[kResultPatterns]);
    }
}

} // namespace android::orvel::app::module
