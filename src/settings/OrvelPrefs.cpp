#include "settings/OrvelPrefs.h"

#include "app/OrvelApplicationUtils.h"
#include "app/OrvelProcessorDataBase.h"
#include "base/FsrConstants.h"
#include "base/OrvelLog.h"
#include "base/OrvelParse.h"
#include "settings/ConfigText.h"
#include "settings/OrvelSettings.h"

#include <json/reader.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace com::velmor::ravelo {

namespace app = android::orvel::app;
using android::orvel::configText;
using android::orvel::logMalformed;
using android::orvel::oneLine;
using android::orvel::OrvelSettings;
using android::orvel::parseInt;
using android::orvel::splitText;

namespace {

/** What queryParams() takes, in the order in which the sets are applied. */
enum KeySet : int {
    KEY_SET_TEX_SIZE = 1,
    KEY_SET_SHADING_RATE = 2,
    KEY_SET_ANISOTROPY = 3,
    KEY_SET_YS_SCENE = 4,
    KEY_SET_YS_TRANSFER = 5,
    KEY_SET_YS_LAUNCH = 6,
    KEY_SET_ADAPT_SIZES = 7,
    KEY_SET_SHADER_REPLACE = 8,
    KEY_SET_DYNAMIC_RESOLUTION = 9,
    KEY_SET_HKRPG_SCENE = 10,
    KEY_SET_HP_TRANSFER = 11,
    KEY_SET_FRAME_INTERVAL = 12,
    KEY_SET_SUPER_RESOLUTION = 13,
    KEY_SET_BACKBUFFER = 14,
    KEY_SET_DYNAMIC_FRAME_INTERVAL = 15,
};

/**
 * What is wrong with the text is logged.
 * @return the root's member "configs" or, when that is no object, null; nothing when the text is no JSON
 */
std::optional<Json::Value> parseConfigs(const std::string& text) {
    Json::Value root;
    try {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations" // its successor reads texts that this one refuses
        Json::Reader reader;
        if (!reader.parse(text, root, /*collectComments=*/true)) {
            ORVEL_LOGE("configuration is no JSON: %s", oneLine(reader.getFormattedErrorMessages()).c_str());
#pragma GCC diagnostic pop
            return std::nullopt;
        }
    } catch (const std::exception& error) { // nested too deep
        ORVEL_LOGE("configuration is no JSON: %s", error.what());
        return std::nullopt;
    }
    if (!root.isObject() || !root["configs"].isObject()) {
        ORVEL_LOGE("configuration has no object \"configs\": %s", oneLine(text).c_str());
        return Json::Value();
    }
    return root["configs"];
}

/** @return W and H of "WxH"; nothing when a number is missing or malformed */
std::optional<TEX_SIZE> parseSize(const std::string& item) {
    const std::vector<std::string> numbers = splitText(item, "x");
    if (numbers.size() < 2) {
        return std::nullopt;
    }
    const std::optional<int32_t> width = parseInt(numbers[0]);
    const std::optional<int32_t> height = parseInt(numbers[1]);
    if (!width || !height) {
        return std::nullopt;
    }
    return TEX_SIZE{*width, *height};
}

/** @return the sizes of a list, all or none: nothing when one is malformed */
std::optional<std::vector<TEX_SIZE>> parseSizes(const std::string& text) {
    std::vector<TEX_SIZE> sizes;
    for (const std::string& item : splitText(text, ";")) {
        const std::optional<TEX_SIZE> size = parseSize(item);
        if (!size) {
            return std::nullopt;
        }
        sizes.push_back(*size);
    }
    return sizes;
}

} // namespace

OrvelPrefs::OrvelPrefs() : mProcessorData(app::CreateProcessorData()) {}

OrvelPrefs::~OrvelPrefs() { app::ReleaseProcessorData(mProcessorData); }

void OrvelPrefs::readFromRavelo(const std::string& text) {
    std::optional<Json::Value> configs = parseConfigs(text);
    if (!configs) {
        return;
    }
    mConfigs = std::move(*configs);
    const android::OrvelApplicationType type = OrvelSettings::getInstance().mApplicationType;
    if (!app::UsingRenderController(type)) {
        for (int which = KEY_SET_TEX_SIZE; which <= KEY_SET_DYNAMIC_FRAME_INTERVAL; ++which) {
            queryParams(which);
        }
        return;
    }
    if (type == android::APP_TYPE_SGAME) {
        queryParams(KEY_SET_DYNAMIC_FRAME_INTERVAL);
    } else if (type == android::APP_TYPE_PUBG) {
        queryParams(KEY_SET_ANISOTROPY);
    }
    if (mProcessorData) {
        initProcessorData();
    }
}

void OrvelPrefs::initProcessorData() {
    try {
        mProcessorData->InitProcessorConfigData(mConfigs);
    } catch (const std::exception& error) {
        // No half-built module list may stay: ids without their data, never checked against the driver.
        ORVEL_LOGE("configuration of the processor is malformed: %s", oneLine(error.what()).c_str());
        app::OrvelProcessorDataBase* empty = app::CreateProcessorData();
        app::ReleaseProcessorData(mProcessorData);
        mProcessorData = empty;
    }
}

void OrvelPrefs::queryParams(int which) {
    switch (which) {
    case KEY_SET_TEX_SIZE: {
        const std::string text = textOf("tex_size");
        const std::optional<TEX_SIZE> size = parseSize(text);
        if (!size && !text.empty()) {
            logMalformed("tex_size", text);
        } else if (size && size->width >= 1 && size->height >= 1) {
            mTexSize = *size;
            mTexSizeEnabled = true;
        }
        break;
    }
    case KEY_SET_SHADING_RATE:
        if (const auto rate = numberOf("shader_rate"); rate && *rate >= 1) {
            mShadingRate = *rate;
            mShadingRateEnabled = true;
        }
        break;
    case KEY_SET_ANISOTROPY:
        if (const auto anisotropy = numberOf("tex_param_anisotropy"); anisotropy && *anisotropy >= 1) {
            mTexAnisotropy = *anisotropy;
            mTexAnisotropyEnabled = true;
        }
        break;
    case KEY_SET_YS_SCENE:
        // Deliberate: any text switches this one on, "0" too.
        mYSSceneRecognize = mYSSceneRecognize || !textOf("ys_scene_recognize").empty();
        break;
    case KEY_SET_YS_TRANSFER:
        mYSTransferRecognize = mYSTransferRecognize || isOne("ys_transfer_recognize");
        break;
    case KEY_SET_YS_LAUNCH:
        mYSLaunchRecognize = mYSLaunchRecognize || isOne("ys_launch_recognize");
        break;
    case KEY_SET_ADAPT_SIZES:
        queryAdaptSizes();
        derivePostProcessLowParams();
        break;
    case KEY_SET_SHADER_REPLACE:
        if (const auto config = numberOf("shader_replace_config"); config && *config >= 1) {
            mShaderReplaceConfig = *config;
        }
        break;
    case KEY_SET_DYNAMIC_RESOLUTION:
        queryDynamicResolution();
        break;
    case KEY_SET_HKRPG_SCENE:
        mHkrpgSceneRecognize = mHkrpgSceneRecognize || isOne("hkrpg_scene_recognize");
        break;
    case KEY_SET_HP_TRANSFER:
        mHPTransferRecognize = mHPTransferRecognize || isOne("hp_transfer_recognize");
        break;
    case KEY_SET_FRAME_INTERVAL:
        mDFIInterval = numberOf("dfi_interval").value_or(mDFIInterval);
        break;
    case KEY_SET_SUPER_RESOLUTION:
        querySuperResolutionSizes();
        break;
    case KEY_SET_BACKBUFFER:
        queryBackbufferSizes();
        break;
    case KEY_SET_DYNAMIC_FRAME_INTERVAL:
        mDynamicDFIEnabled = mDynamicDFIEnabled || isOne("dynamic_dfi_interval");
        break;
    default:
        ORVEL_LOGE("Undefined pararm commends"); // spelt so wherever this line is looked for
        break;
    }
}

/** @return the key's value as text; empty, which means not given, when it is missing, null, a list or an object */
std::string OrvelPrefs::textOf(const char* key) const { return configText(mConfigs, key).value_or(""); }

std::optional<int32_t> OrvelPrefs::numberOf(const char* key) const {
    const std::string text = textOf(key);
    const std::optional<int32_t> number = parseInt(text);
    if (!number && !text.empty()) {
        logMalformed(key, text);
    }
    return number;
}

bool OrvelPrefs::isOne(const char* key) const { return numberOf(key) == 1; }

/** Appends the key's sizes, all or none; a text that is given is logged first. */
void OrvelPrefs::appendSizes(const char* key, const char* logFormat, std::vector<TEX_SIZE>& sizes) const {
    const std::string text = textOf(key);
    if (text.empty()) {
        return;
    }
    ORVEL_LOGD(logFormat, text.c_str());
    if (const auto given = parseSizes(text)) {
        sizes.insert(sizes.end(), given->begin(), given->end());
    } else {
        logMalformed(key, text);
    }
}

void OrvelPrefs::queryAdaptSizes() {
    struct AdaptKey {
        TYPE_ADAPT_SET set;
        const char* key;
        const char* logFormat;
    };
    static constexpr AdaptKey kKeys[] = {
        {TEX_SIZE_POST_PROCESS_LOW, "post_process_low", "ppl: %s"},
        {TEX_SIZE_POST_PROCESS_HIGH, "post_process_high", "pph: %s"},
        {TEX_SIZE_MAX_RESOLUTION, "max_resolution", "mr: %s"},
        {TEX_SIZE_MAX_RESOLUTION_80P, "max_resolution_80p", "mr80p: %s"},
    };
    mAdaptSizes.clear();
    for (const AdaptKey& adapt : kKeys) {
        const std::string text = textOf(adapt.key);
        ORVEL_LOGD(adapt.logFormat, text.c_str());
        const auto sizes = parseSizes(text);
        if (!sizes) {
            logMalformed(adapt.key, text);
        } else if (!sizes->empty()) { // an empty list would switch the built-in sizes off
            mAdaptSizes[adapt.set] = *sizes;
        }
    }
}

void OrvelPrefs::derivePostProcessLowParams() {
    const auto low = mAdaptSizes.find(TEX_SIZE_POST_PROCESS_LOW);
    const auto high = mAdaptSizes.find(TEX_SIZE_POST_PROCESS_HIGH);
    if (low == mAdaptSizes.end() || high == mAdaptSizes.end() || low->second.size() != high->second.size()) {
        return;
    }
    for (size_t i = 0; i < low->second.size(); ++i) {
        const TEX_SIZE& input = low->second[i];
        const TEX_SIZE& output = high->second[i];
        const auto constants = android::orvel::fsrEasuConstants(input.width, input.height, output.width, output.height);
        mPostProcessLowParams[input.width].assign(constants.begin(), constants.end());
    }
}

void OrvelPrefs::queryDynamicResolution() {
    mDRREnabled = false;
    if (textOf("drr_enable") != "1") { // the text, not the number: "01" leaves it off
        return;
    }
    mDRRUpdateInterval = numberOf("drr_update_interval").value_or(mDRRUpdateInterval);
    appendSizes("drr_base_size", "dbs: %s", mDRRBaseSizes);
    appendSizes("drr_available_size", "das: %s", mDRRAvailableSizes);
    appendSizes("drr_illegal_size", "dis: %s", mDRRIllegalSizes);
    const bool usable = !mDRRBaseSizes.empty() && !mDRRAvailableSizes.empty();
    switch (OrvelSettings::getInstance().mApplicationType) {
    case android::APP_TYPE_HKRPG:
        mDRREnabled = usable;
        break;
    case android::APP_TYPE_YUANSHEN:
        mDRREnabled = usable && !mDRRIllegalSizes.empty();
        break;
    default: // other games have no dynamic resolution
        break;
    }
}

void OrvelPrefs::querySuperResolutionSizes() {
    const std::string text = textOf("orvel_sr_config");
    if (text.empty()) {
        return;
    }
    ORVEL_LOGD("sr: %s", text.c_str());
    const std::vector<std::string> items = splitText(text, ";");
    auto sizes = mSRSizes;
    for (size_t i = 0; i < std::min(items.size(), sizes.size()); ++i) {
        const std::optional<TEX_SIZE> size = parseSize(items[i]);
        if (!size) {
            logMalformed("orvel_sr_config", text);
            return;
        }
        sizes[i] = *size;
    }
    mSRSizes = sizes;
}

void OrvelPrefs::queryBackbufferSizes() {
    const std::string text = textOf("orvel_sr_backbuffer_size_config");
    if (text.empty()) {
        return;
    }
    ORVEL_LOGD("srbfsp: %s", text.c_str());
    const std::vector<std::string> items = splitText(text, ",");
    std::array<int32_t, 8> sizes{}; // too few numbers leave zeros, which are not valid
    for (size_t i = 0; i < std::min(items.size(), sizes.size()); ++i) {
        const std::optional<int32_t> number = parseInt(items[i]);
        if (!number) {
            logMalformed("orvel_sr_backbuffer_size_config", text);
            return;
        }
        sizes[i] = *number;
    }
    mBackbufferSizes = sizes;
    mBackbufferSizeValid = std::all_of(sizes.begin(), sizes.end(), [](int32_t number) { return number > 0; });
}

} // namespace com::velmor::ravelo
