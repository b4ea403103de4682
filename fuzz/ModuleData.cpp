// The parameters of every module that has some. A line of input is a key's text, in the order below.
#include "Fuzz.h"

#include "app/games/pubg/OrvelPUBGFilterModuleData.h"
#include "app/games/pubg/OrvelPUBGIRRModuleData.h"
#include "app/games/sgame/OrvelSGameFilterModuleData.h"
#include "app/games/sgame/OrvelSGameVRSModuleData.h"
#include "app/games/sgame/ShadingRateTemplates.h"

#include <json/value.h>

#include <algorithm>
#include <vector>

using namespace android::orvel::app::module;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::logNothing();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 2048) {
        return 0; // compiling patterns is slow, and no configuration is longer
    }
    static constexpr const char* kKeys[] = {"vrs_LabelInfo",     "vrs_LabelLevel",      "vrs_MapInfo",
                                            "effect_Binary",     "vrs_MotionDetection", "effect_Types",
                                            "vrs_MVPMatrixLabel"};
    FuzzedDataProvider input(data, size);
    Json::Value json;
    for (const char* key : kKeys) {
        const std::string text = input.ConsumeRandomLengthString();
        if (text != "-") { // else the key is missing
            json[key] = text;
        }
    }
    const OrvelSGameFilterModuleData filter(json);
    const OrvelPUBGFilterModuleData other(json);
    const OrvelPUBGIRRModuleData nothing(json);
    const OrvelSGameVRSModuleData rates(json);
    fuzz::demand(nothing.valid, "a module without parameters is always usable");
    for (const OrvelEffectModuleData* each :
         {static_cast<const OrvelEffectModuleData*>(&filter), static_cast<const OrvelEffectModuleData*>(&other)}) {
        fuzz::demand(each->checkPeriod >= 1 && each->checkPeriod <= 15, "the period is 1 to 15");
        for (const uint32_t type : each->effectTypes) {
            fuzz::demand(type >= 1 && type <= 8, "types are 1 to 8");
        }
        fuzz::demand(!each->valid || each->effectTypes.empty() || each->effectTypes.size() >= 5, "five types at least");
    }
    if (rates.valid) {
        const OrvelSGameVRSModuleData copy(rates);
        copy.IsMap("pvp_5_small");
        copy.IsMainColor("SGame_Main_color_0");
        copy.FindLabelRates("scene_ground_d");
        const TemplateShape shape{64, 32, copy.mMapRectX, copy.mMapRectY};
        std::vector<uint8_t> texels(64 * 32, 99);
        fillTwoRings(texels.data(), shape, 1, 2);
        fillThreeRings(texels.data(), shape, 1, 2, 3);
        fuzz::demand(std::count(texels.begin(), texels.end(), 99) == 0, "every texel is written");
    }
    return 0;
}
