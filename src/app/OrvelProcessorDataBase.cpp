#include "app/OrvelProcessorDataBase.h"

#include "app/OrvelApplicationUtils.h"

#include <algorithm>
#include <unordered_set>

namespace android::orvel::app {

OrvelProcessorDataBase::~OrvelProcessorDataBase() {
    for (const auto& [id, data] : moduleData) {
        ReleaseProcessorModuleData(data);
    }
}

void OrvelProcessorDataBase::ParsePayloadData(const std::string&) {}

void OrvelProcessorDataBase::ColloctModuleExtensionFunctions() {}

const std::vector<std::string>& OrvelProcessorDataBase::GetModuleExtensionFunctions(uint32_t) {
    static const std::vector<std::string> none;
    return none;
}

void OrvelProcessorDataBase::CheckExtensionFunctions(std::function<bool(const std::string&)> isMissing) {
    std::unordered_set<uint32_t> dropped; // collected first: erasing an id changes the map
    for (const auto& [name, ids] : extensionFunctions) {
        if (isMissing(name)) {
            dropped.insert(ids.begin(), ids.end());
        }
    }
    for (const uint32_t id : dropped) {
        EraseModuleId(id);
    }
}

// The framework's keys are read once its modules exist; until then no process has an active framework, and nothing
// starts the game-information monitor.
void OrvelProcessorDataBase::InitProcessorConfigData(const Json::Value&) {}

void OrvelProcessorDataBase::EraseModuleId(uint32_t id) {
    if (!HasModuleId(id)) {
        return;
    }
    std::erase(moduleIds, id);
    if (const auto data = moduleData.find(id); data != moduleData.end()) {
        ReleaseProcessorModuleData(data->second);
        moduleData.erase(data);
    }
    for (const std::string& name : GetModuleExtensionFunctions(id)) {
        const auto needed = extensionFunctions.find(name);
        if (needed == extensionFunctions.end()) {
            continue;
        }
        std::erase(needed->second, id);
        if (needed->second.empty()) {
            extensionFunctions.erase(needed);
        }
    }
}

bool OrvelProcessorDataBase::HasAnyModuleId() const { return !moduleIds.empty(); }

bool OrvelProcessorDataBase::HasModuleId(uint32_t id) const {
    return std::find(moduleIds.begin(), moduleIds.end(), id) != moduleIds.end();
}

module::OrvelProcessorModuleDataBase* OrvelProcessorDataBase::GetProcessorModuleData(uint32_t id) {
    const auto data = moduleData.find(id);
    return data == moduleData.end() ? nullptr : data->second;
}

void OrvelProcessorDataBase::ColloctExtensionFunctions(
    const std::unordered_map<uint32_t, std::vector<std::string>>& perModule) {
    for (const uint32_t id : moduleIds) {
        const auto names = perModule.find(id);
        if (names == perModule.end()) {
            continue;
        }
        for (const std::string& name : names->second) {
            extensionFunctions[name].push_back(id);
        }
    }
}

void OrvelProcessorDataBase::RemoveExtensionFunction(const std::string& name) {
    const auto needed = extensionFunctions.find(name);
    if (needed == extensionFunctions.end()) {
        return;
    }
    const std::vector<uint32_t> ids = needed->second; // a copy: erasing an id changes the list
    for (const uint32_t id : ids) {
        EraseModuleId(id);
    }
}

} // namespace android::orvel::app
