// What the tuning service wants for this package: its JSON answer, parsed.
#pragma once

#include "base/Relaxed.h"
#include "settings/OrvelTexSize.h"

#include <json/value.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace android::orvel::app {
class OrvelProcessorDataBase;
}

namespace com::velmor::ravelo {

/**
 * Filled once at start-up and then read by the features. A key that is missing, empty or malformed leaves its members
 * at their defaults; a malformed one is logged with its text.
 */
class OrvelPrefs {
public:
    /** Creates the processor data: the application type must be known by then. */
    OrvelPrefs();
    ~OrvelPrefs();
    OrvelPrefs(const OrvelPrefs&) = delete;
    OrvelPrefs& operator=(const OrvelPrefs&) = delete;

    /**
     * Parses the service's answer and applies the keys that the application type takes: games of the framework have
     * keys of their own and only one each of these here.
     * @param text JSON object with the object "configs", whose values are read as strings
     */
    void readFromRavelo(const std::string& text);

    /** Applies one key set, 1 to 15, from mConfigs. */
    void queryParams(int which);

    Json::Value mConfigs; // null unless the answer had an object "configs"
    bool mEnabled = false;
    bool mTexAnisotropyEnabled = false;
    int32_t mTexAnisotropy = 0;
    bool mTexSizeEnabled = false;
    TEX_SIZE mTexSize;
    bool mShadingRateEnabled = false;
    int32_t mShadingRate = 0;
    std::map<TYPE_ADAPT_SET, std::vector<TEX_SIZE>> mAdaptSizes; // holds no empty list
    std::map<int32_t, std::vector<float>> mPostProcessLowParams; // low width to 16 upscaling constants
    bool mYSSceneRecognize = false;
    bool mYSTransferRecognize = false;
    bool mYSLaunchRecognize = false;
    bool mHkrpgSceneRecognize = false;
    bool mHPTransferRecognize = false;
    int32_t mShaderReplaceConfig = -1;
    bool mDRREnabled = false;
    int32_t mDRRUpdateInterval = 10; // milliseconds
    std::vector<TEX_SIZE> mDRRBaseSizes;
    std::vector<TEX_SIZE> mDRRIllegalSizes;
    std::vector<TEX_SIZE> mDRRAvailableSizes;
    int32_t mDFIInterval = -1;
    bool mDynamicDFIEnabled = false;
    // Cleared by the thread that finds the window unusable, read by any thread that makes a surface.
    android::orvel::Relaxed<bool> mBackbufferSizeValid = false;
    std::array<int32_t, 8> mBackbufferSizes{}; // four sizes: native, tolerated, super resolution off, on
    std::array<TEX_SIZE, 2> mSRSizes{};        // reduced, then target
    android::orvel::app::OrvelProcessorDataBase* mProcessorData; // owned; null for an unlisted process

private:
    std::string textOf(const char* key) const;
    std::optional<int32_t> numberOf(const char* key) const;
    bool isOne(const char* key) const;
    void appendSizes(const char* key, const char* logFormat, std::vector<TEX_SIZE>& sizes) const;

    void queryAdaptSizes();
    void derivePostProcessLowParams();
    void queryDynamicResolution();
    void querySuperResolutionSizes();
    void queryBackbufferSizes();
    void initProcessorData();
};

} // namespace com::velmor::ravelo
