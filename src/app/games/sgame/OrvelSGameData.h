// Processor configuration of the SGame package.
#pragma once

#include "app/games/shared/OrvelShadingRateData.h"
#include "base/OrvelPatternList.h"

#include <cstdint>
#include <string>
#include <unordered_map>

namespace android::orvel::app {

/** By which labels, and from how many draws on, the processor recognises the game's phases. */
class OrvelSGameData : public OrvelShadingRateData {
public:
    // Numbers of the scenes that labels are listed for.
    static constexpr int kSceneNone = 0;
    static constexpr int kSceneLobby = 1;
    static constexpr int kSceneBattle = 2;
    static constexpr int kScenePickHero = 3;
    static constexpr int kSceneOther = 4;

    OrvelSGameData();

    /**
     * Reads up to three sections separated by "#": labels as "SCENE:PATTERN|PATTERN;SCENE-UI:PATTERN", labels of clear
     * programs, the draw-count threshold. Without any "#" nothing is read. Malformed entries are skipped.
     * @throw std::invalid_argument, std::out_of_range when the threshold is no number
     */
    void ParsePayloadData(const std::string& payload) override;

    /** @return a scene's number, kSceneNone for an unknown name */
    static int SwitchSceneToID(const std::string& name);

    /** @return labels of textures of a scene's interface; an empty list for an unknown number */
    const OrvelPatternList& GetUILabelRegexs(int scene) const { return ListOf(mUILabels, scene); }
    /** @return labels of textures of the scene itself; an empty list for an unknown number */
    const OrvelPatternList& GetSceneLabelRegexs(int scene) const { return ListOf(mSceneLabels, scene); }
    /** @return labels of the programs by which the game itself clears */
    const OrvelPatternList& GetClearProgramLabelRegexs() const { return mClearProgramLabels; }
    int32_t GetDrawCountThreshold() const { return mDrawCountThreshold; }

private:
    using ListsByScene = std::unordered_map<int, OrvelPatternList>;

    static const OrvelPatternList& ListOf(const ListsByScene& lists, int scene);
    void ParseLabels(const std::string& section);

    ListsByScene mUILabels; // all scenes have a list
    ListsByScene mSceneLabels;
    OrvelPatternList mClearProgramLabels;
    int32_t mDrawCountThreshold = 5;
};

} // namespace android::orvel::app
