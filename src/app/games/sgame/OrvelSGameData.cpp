#include "app/games/sgame/OrvelSGameData.h"

#include "app/ConfigNumber.h"
#include "app/games/sgame/OrvelSGameVRSModule.h"
#include "app/games/shared/OrvelSharedVRSModules.h"
#include "base/OrvelParse.h"

#include <string_view>
#include <vector>

namespace android::orvel::app {

static const OrvelShadingRateData::FunctionTable& functions() {
    // Never destroyed: an application may ask for a function while the process ends.
    static const auto& table = *new OrvelShadingRateData::FunctionTable{
        {module::OrvelSGameVRSModule::PROCESSOR_MODULE_TYPE,
         {"glShadingRateQCOM", "glShadingRateEXT", "glShadingRateCombinerOpsEXT", "glFramebufferShadingRateEXT",
          "glGetFragmentShadingRatesEXT"}},
        {module::OrvelSGameSharedVRSModule::PROCESSOR_MODULE_TYPE, OrvelShadingRateData::SharedVRSFunctions()},
    };
    return table;
}

OrvelSGameData::OrvelSGameData() : OrvelShadingRateData(functions()) {
    for (const int scene : {kSceneLobby, kSceneBattle, kScenePickHero, kSceneOther}) {
        mUILabels[scene];
        mSceneLabels[scene];
    }
}

int OrvelSGameData::SwitchSceneToID(const std::string& name) {
    if (name == "lobby") {
        return kSceneLobby;
    }
    if (name == "battle") {
        return kSceneBattle;
    }
    if (name == "pick_hero") {
        return kScenePickHero;
    }
    return name == "other" ? kSceneOther : kSceneNone;
}

const OrvelPatternList& OrvelSGameData::ListOf(const ListsByScene& lists, int scene) {
    static const auto& none = *new OrvelPatternList; // never destroyed: hooks run until the process has ended
    const auto list = lists.find(scene);
    return list == lists.end() ? none : list->second;
}

void OrvelSGameData::ParsePayloadData(const std::string& payload) {
    if (payload.find('#') == std::string::npos) {
        return;
    }
    const std::vector<std::string> sections = splitText(payload, "#");
    if (!sections.empty()) {
        ParseLabels(sections[0]);
    }
    if (sections.size() > 1) {
        mClearProgramLabels.append(OrvelPatternList::split(sections[1]));
    }
    if (sections.size() > 2) {
        mDrawCountThreshold = configNumber(kPayloadDataKey, sections[2],
                                           [](const std::string& number) { return std::stoi(number, nullptr, 10); });
    }
}

void OrvelSGameData::ParseLabels(const std::string& section) {
    constexpr std::string_view kUISuffix = "-UI";
    for (const std::string& entry : splitText(section, ";")) {
        const std::vector<std::string> parts = splitText(entry, ":");
        if (parts.size() != 2) {
            continue;
        }
        std::string name = parts[0];
        const bool isUI = name.ends_with(kUISuffix);
        if (isUI) {
            name.resize(name.size() - kUISuffix.size());
        }
        if (const int scene = SwitchSceneToID(name); scene != kSceneNone) {
            (isUI ? mUILabels : mSceneLabels)[scene].append(OrvelPatternList::split(parts[1]));
        }
    }
}

} // namespace android::orvel::app
