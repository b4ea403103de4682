#include "app/OrvelEffectModuleData.h"

#include "base/OrvelParse.h"
#include "settings/ConfigText.h"

#include <optional>

namespace android::orvel::app::module {

namespace {

constexpr char kBinaryKey[] = "effect_Binary";
constexpr char kTypesKey[] = "effect_Types";
constexpr size_t kSwitches = 3;
constexpr int32_t kMaxCheckPeriod = 15;
constexpr int32_t kMaxType = 8;
constexpr size_t kMinTypes = 5;

} // namespace

OrvelEffectModuleData::OrvelEffectModuleData(const Json::Value& json) : OrvelProcessorModuleDataBase(json) {
    valid = ReadBinary(json) && ReadTypes(json);
}

bool OrvelEffectModuleData::ReadBinary(const Json::Value& json) {
    const std::optional<std::string> text = configText(json, kBinaryKey);
    if (!text) {
        return false;
    }
    mBinaryParts = splitText(*text, ";");
    if (mBinaryParts.size() < kSwitches) {
        logMalformed(kBinaryKey, *text);
        return false;
    }
    for (size_t i = 0; i < mBinaryParts.size() && i <= kSwitches; ++i) {
        const std::optional<int32_t> number = parseInt(mBinaryParts[i]);
        if (!number) {
            logMalformed(kBinaryKey, *text);
            return false;
        }
        if (i < kSwitches) {
            effectBinary.push_back(*number != 0);
        } else if (*number >= 1 && *number <= kMaxCheckPeriod) {
            checkPeriod = static_cast<uint32_t>(*number);
        }
    }
    return true;
}

bool OrvelEffectModuleData::ReadTypes(const Json::Value& json) {
    const std::optional<std::string> text = configText(json, kTypesKey);
    if (!text) {
        return true; // no type is loaded then, and nothing drawn
    }
    for (const std::string& piece : splitText(*text, ";")) {
        const std::optional<int32_t> type = parseInt(piece);
        if (!type || *type < 0 || *type > kMaxType) {
            logMalformed(kTypesKey, *text);
            return false;
        }
        if (*type != 0) {
            effectTypes.push_back(static_cast<uint32_t>(*type));
        }
    }
    if (effectTypes.size() < kMinTypes) {
        logMalformed(kTypesKey, *text);
        return false;
    }
    return true;
}

} // namespace android::orvel::app::module
