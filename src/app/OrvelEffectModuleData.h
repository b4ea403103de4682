// Parameters that the filter modules of all games share. Most of them are the effect manager's, which finds them here.
#pragma once

#include "app/OrvelProcessorModuleDataBase.h"

#include <cstdint>
#include <string>
#include <vector>

namespace android::orvel::app::module {

/**
 * Read from "effect_Binary", parts separated by ";" of which the first three are numbers, and "effect_Types", numbers
 * separated by ";". What cannot be used is logged and clears valid.
 */
class OrvelEffectModuleData : public OrvelProcessorModuleDataBase {
public:
    explicit OrvelEffectModuleData(const Json::Value& json);

    std::vector<bool> effectBinary;    // whether an effect comes as a program binary; by position of the loading order
    std::vector<uint32_t> effectTypes; // filter types to load, each 1 to 8
    uint32_t checkPeriod = 10;         // frames between two looks at the chosen filter type, 1 to 15

protected:
    std::vector<std::string> mBinaryParts; // of "effect_Binary"; those behind the fourth are the game's own

private:
    bool ReadBinary(const Json::Value& json);
    bool ReadTypes(const Json::Value& json);
};

} // namespace android::orvel::app::module
