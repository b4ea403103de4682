#include "app/games/sgame/OrvelSGameVRSModuleData.h"

#include "app/games/sgame/ShadingRateCodes.h"
#include "base/OrvelLog.h"
#include "base/OrvelParse.h"
#include "settings/ConfigText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace android::orvel::app::module {

namespace {

constexpr char kLabelInfoKey[] = "vrs_LabelInfo";
constexpr char kLabelLevelKey[] = "vrs_LabelLevel";
constexpr char kMapInfoKey[] = "vrs_MapInfo";
constexpr char kMVPMatrixLabelKey[] = "vrs_MVPMatrixLabel";
constexpr char kMotionDetectionKey[] = "vrs_MotionDetection";

constexpr char kMapClass[] = "map"; // names in "vrs_LabelInfo" that are no class of their own
constexpr char kFramebufferClass[] = "fbo";
constexpr int32_t kLearntLevel = 1; // its patterns decide which textures have a rate
constexpr int32_t kOtherLevel = 2;  // may have another rate for the same pattern

/** @return the two pieces of text, or nothing if there are fewer or more */
std::optional<std::array<std::string, 2>> splitInTwo(const std::string& text, const char* delimiter) {
    std::vector<std::string> pieces = splitText(text, delimiter);
    if (pieces.size() != 2) {
        return std::nullopt;
    }
    return std::array{std::move(pieces[0]), std::move(pieces[1])};
}

} // namespace

OrvelSGameVRSModuleData::OrvelSGameVRSModuleData(const Json::Value& json) : OrvelProcessorModuleDataBase(json) {
    const auto textOf = [&](const char* key) { return configText(json, key).value_or(""); };
    valid = ReadLabelInfo(textOf(kLabelInfoKey)) && ReadLabelLevel(textOf(kLabelLevelKey)) &&
            ReadMapInfo(textOf(kMapInfoKey)) && ReadMotionDetection(textOf(kMotionDetectionKey));
    if (std::string name = textOf(kMVPMatrixLabelKey); !name.empty()) {
        mMVPUniformName = std::move(name);
    }
    if (valid) {
        CompileLabels();
    }
}

void OrvelSGameVRSModuleData::CompileLabels() {
    mMapLabels.append({mMapLabelPatterns.begin(), mMapLabelPatterns.end()});
    std::vector<std::string> patterns;
    for (const DrawRate& each : mDrawRates[kLearntLevel]) {
        patterns.push_back(each.pattern);
        mLabelRates.push_back({each.rate, GetDrawRate(kOtherLevel, each.pattern)});
    }
    mTextureLabels.append(patterns);
}

GLenum OrvelSGameVRSModuleData::GetDrawRate(int32_t level, const std::string& pattern) const {
    const auto rates = mDrawRates.find(level);
    if (rates == mDrawRates.end()) {
        return 0;
    }
    const auto found = std::find_if(rates->second.begin(), rates->second.end(),
                                    [&](const DrawRate& each) { return each.pattern == pattern; });
    return found == rates->second.end() ? 0 : found->rate;
}

const std::vector<uint8_t>& OrvelSGameVRSModuleData::GetRegionRates(int32_t level) const {
    static const auto& none = *new std::vector<uint8_t>;
    const auto codes = mRegionRates.find(level);
    return codes == mRegionRates.end() ? none : codes->second;
}

bool OrvelSGameVRSModuleData::ReadLabelInfo(const std::string& text) {
    for (const std::string& entry : splitText(text, ";")) {
        const auto parts = splitInTwo(entry, "#");
        if (!parts) {
            return false;
        }
        const auto& [name, value] = *parts;
        if (name == kMapClass) {
            const std::vector<std::string> patterns = splitText(value, "|");
            mMapLabelPatterns.insert(patterns.begin(), patterns.end());
        } else if (name == kFramebufferClass) {
            if (OrvelPattern pattern(value); pattern.isValid()) {
                mMainColorPattern = std::move(pattern);
            }
        } else {
            mLabelClasses[name] = value;
        }
    }
    return !text.empty();
}

bool OrvelSGameVRSModuleData::ReadLabelLevel(const std::string& text) {
    for (const std::string& entry : splitText(text, ";")) {
        const auto parts = splitInTwo(entry, "#");
        const auto level = parts ? parseInt((*parts)[0]) : std::nullopt;
        const auto rates = parts ? splitInTwo((*parts)[1], "$") : std::nullopt;
        if (!level || !rates) {
            return false;
        }
        const Outcome drawPart = ReadDrawPart(*level, (*rates)[0]);
        if (drawPart == MALFORMED || (drawPart == DONE && !ReadRegionPart(*level, (*rates)[1]))) {
            return false;
        }
    }
    return !text.empty();
}

/** At a class that nobody defined the level ends, with what it has by then and without its region part. */
OrvelSGameVRSModuleData::Outcome OrvelSGameVRSModuleData::ReadDrawPart(int32_t level, const std::string& text) {
    for (const std::string& item : splitText(text, ",")) {
        const auto parts = splitInTwo(item, ":");
        const auto code = parts ? parseInt((*parts)[0]) : std::nullopt;
        if (!code) {
            return MALFORMED;
        }
        for (const std::string& name : splitText((*parts)[1], "|")) {
            const auto known = mLabelClasses.find(name);
            if (known == mLabelClasses.end()) {
                ORVEL_LOGE("VMD no label match: %s", oneLine(name).c_str());
                return UNKNOWN_CLASS;
            }
            for (const std::string& pattern : splitText(known->second, "|")) {
                SetDrawRate(level, pattern, shadingRateOf(*code).drawRate);
            }
        }
    }
    return DONE;
}

bool OrvelSGameVRSModuleData::ReadRegionPart(int32_t level, const std::string& text) {
    for (const std::string& piece : splitText(text, ",")) {
        const std::optional<int32_t> code = parseInt(piece);
        if (!code) {
            return false;
        }
        mRegionRates[level].push_back(shadingRateOf(*code).imageCode);
    }
    return true;
}

/** Deliberately whole numbers, the two parts of the image included. */
bool OrvelSGameVRSModuleData::ReadMapInfo(const std::string& text) {
    if (text.empty()) {
        return true;
    }
    const std::vector<std::string> pieces = splitText(text, ";");
    std::array<int32_t, 4> numbers;
    if (pieces.size() != numbers.size()) {
        return false;
    }
    for (size_t i = 0; i < numbers.size(); ++i) {
        const std::optional<int32_t> number = parseInt(pieces[i]);
        if (!number) {
            return false;
        }
        numbers[i] = *number;
    }
    mMapRectY = static_cast<float>(numbers[0]);
    mMapRectX = static_cast<float>(numbers[1]);
    mTargetWidth = numbers[2];
    mTargetHeight = numbers[3];
    return true;
}

bool OrvelSGameVRSModuleData::ReadMotionDetection(const std::string& text) {
    if (text.empty()) {
        return true;
    }
    const std::optional<int32_t> number = parseInt(text);
    mMotionDetection = number == 1;
    return number.has_value();
}

void OrvelSGameVRSModuleData::SetDrawRate(int32_t level, const std::string& pattern, GLenum rate) {
    std::vector<DrawRate>& rates = mDrawRates[level];
    const auto same =
        std::find_if(rates.begin(), rates.end(), [&](const DrawRate& each) { return each.pattern == pattern; });
    if (same != rates.end()) {
        same->rate = rate; // the later one counts, in the place of the first
    } else {
        rates.push_back({pattern, rate});
    }
}

} // namespace android::orvel::app::module
