// Parameters of OrvelSGameVRSModule: which textures count, and the rates of each level.
#pragma once

#include "app/OrvelProcessorModuleDataBase.h"
#include "base/OrvelPattern.h"
#include "base/OrvelPatternList.h"

#include <EGL/egldefs.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace android::orvel::app::module {

/**
 * Read from the keys "vrs_...", all of them texts. Classes of labels and levels must be there; what cannot be read
 * clears valid without a word, as the list of modules in the log tells it. Can be copied: the configuration's own may
 * go while a module lives.
 */
class OrvelSGameVRSModuleData : public OrvelProcessorModuleDataBase {
public:
    static constexpr uint32_t MODULE_DATA_TYPE = 1;

    struct DrawRate {
        std::string pattern; // of a texture's label
        GLenum rate;         // GL_SHADING_RATE_..._EXT
    };

    /** Of the draws with one texture. */
    struct LabelRates {
        GLenum level1;
        GLenum level2; // 0 when level 2 says nothing of the same pattern
    };

    explicit OrvelSGameVRSModuleData(const Json::Value& json);

    // What a texture's label says.
    bool IsMainColor(std::string_view label) const { return mMainColorPattern.matches(label); }
    bool IsMap(std::string_view label) const { return mMapLabels.find(label) != OrvelPatternList::kNone; }
    /** @return the position in mLabelRates of the first one that the label matches, or OrvelPatternList::kNone */
    int FindLabelRates(std::string_view label) const { return mTextureLabels.find(label); }

    /** @return a level's image codes; none for a level without */
    const std::vector<uint8_t>& GetRegionRates(int32_t level) const;

    std::set<std::string> mMapLabelPatterns{"pvp_\\d_small", "pvp_melee"}; // of the battle's maps
    OrvelPattern mMainColorPattern{".*Main_color.*"};                      // of the scene's main colour target
    std::unordered_map<std::string, std::string> mLabelClasses;            // name to patterns, separated by "|"
    std::map<int32_t, std::vector<DrawRate>> mDrawRates;                   // by level, as they were configured
    std::map<int32_t, std::vector<uint8_t>> mRegionRates;                  // by level: codes of a rate image
    float mMapRectY = 0.31f;     // the minimap's side, as a part of the image's height
    float mMapRectX = 0.051f;    // its left edge, as a part of the image's width
    int32_t mTargetWidth = 2220; // pixels of the scene's target
    int32_t mTargetHeight = 932;
    std::string mMVPUniformName = "hlslcc_mtx4x4unity_MatrixVP"; // the camera's matrix
    bool mMotionDetection = false;
    std::vector<LabelRates> mLabelRates; // level 1's draw rates, in their order, beside level 2's

private:
    enum Outcome { DONE, UNKNOWN_CLASS, MALFORMED };

    bool ReadLabelInfo(const std::string& text);
    bool ReadLabelLevel(const std::string& text);
    Outcome ReadDrawPart(int32_t level, const std::string& text);
    bool ReadRegionPart(int32_t level, const std::string& text);
    bool ReadMapInfo(const std::string& text);
    bool ReadMotionDetection(const std::string& text);
    void SetDrawRate(int32_t level, const std::string& pattern, GLenum rate);
    GLenum GetDrawRate(int32_t level, const std::string& pattern) const;
    void CompileLabels();

    OrvelPatternList mMapLabels;     // mMapLabelPatterns
    OrvelPatternList mTextureLabels; // those of level 1's draw rates, in their order
};

} // namespace android::orvel::app::module
