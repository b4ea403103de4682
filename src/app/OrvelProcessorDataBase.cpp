#include "app/OrvelProcessorDataBase.h"

#include "app/ConfigNumber.h"
#include "app/OrvelApplicationUtils.h"
#include "app/OrvelProcessorModuleDataBase.h"
#include "base/OrvelLog.h"
#include "settings/ConfigText.h"
#include "settings/GameInfoMonitor.h"
#include "settings/OrvelSettings.h"

#include <json/value.h>

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace android::orvel::app {

namespace {

constexpr char kBaseInfoKey[] = "xrender_BaseInfo";
constexpr char kCheckMainInfoKey[] = "xrender_CheckMainInfo";

constexpr uint32_t kModuleBits = 30; // the mask's bits above these name no module

std::string listOf(const std::vector<uint32_t>& ids) {
    std::string list;
    for (const uint32_t id : ids) {
        list += ' ' + std::to_string(id);
    }
    return list.empty() ? " none" : list;
}

} // namespace

OrvelProcessorDataBase::~OrvelProcessorDataBase() {
    for (const auto& [id, data] : moduleData) {
        ReleaseProcessorModuleData(data);
    }
}

void OrvelProcessorDataBase::ParsePayloadData(const std::string&) {}

void OrvelProcessorDataBase::ColloctModuleExtensionFunctions() {}

const std::vector<std::string>& OrvelProcessorDataBase::GetModuleExtensionFunctions(uint32_t) {
    static const auto& none = *new std::vector<std::string>; // never destroyed, as all that hooks may ask for
    return none;
}

void OrvelProcessorDataBase::CheckExtensionFunctions(std::function<bool(const std::string&)> isMissing) {
    std::vector<std::string> names;
    {
        const std::lock_guard lock(mMutex);
        names = mFunctionOrder;
    }
    std::vector<std::string> missing;
    for (const std::string& name : names) { // in this order: the answer for one may depend on those before it
        if (isMissing(name)) {              // calls the driver: not locked
            missing.push_back(name);
        }
    }
    {
        const std::lock_guard lock(mMutex);
        std::unordered_set<uint32_t> dropped; // collected first: erasing an id changes the map
        for (const std::string& name : missing) {
            if (const auto needed = extensionFunctions.find(name); needed != extensionFunctions.end()) {
                dropped.insert(needed->second.begin(), needed->second.end());
            }
        }
        for (const uint32_t id : dropped) {
            EraseLocked(id);
        }
    }
    // The one line that tells what this process's processors are made of; they all are alike.
    ORVEL_LOGI("framework: processor %d, modules%s", static_cast<int>(OrvelSettings::getInstance().mApplicationType),
               listOf(GetModuleIds()).c_str());
}

void OrvelProcessorDataBase::InitProcessorConfigData(const Json::Value& json) {
    if (const auto text = configText(json, kBaseInfoKey); text && !text->empty()) {
        baseInfo |=
            configNumber(kBaseInfoKey, *text, [](const std::string& mask) { return std::stoull(mask, nullptr, 10); });
    }
    if (baseInfo == 0) {
        return; // not a target of the framework
    }
    InitProcessorCreateInfo();
    InitModuleIdArray(static_cast<uint32_t>(baseInfo));
    if (const auto text = configText(json, kCheckMainInfoKey); text && !text->empty()) {
        InitMainContext(*text);
    }
    if (const auto payload = configText(json, kPayloadDataKey)) {
        ParsePayloadData(*payload);
    }
    std::vector<uint32_t> unusable;
    for (const uint32_t id : GetModuleIds()) {
        if (!InitProcessorModuleData(id, json)) {
            unusable.push_back(id);
        }
    }
    for (const uint32_t id : unusable) {
        EraseModuleId(id);
    }
    if (HasAnyModuleId()) {
        ColloctModuleExtensionFunctions();
        GameInfoMonitor::getInstance().start();
    }
}

void OrvelProcessorDataBase::InitMainContext(const std::string& text) {
    const std::vector<std::string> fields = OrvelSettings::split(text, ";"); // none of them is empty
    if (fields.empty()) {
        return;
    }
    mainContextMode = configNumber(kCheckMainInfoKey, fields[0],
                                   [](const std::string& mode) { return std::stoi(mode, nullptr, 10); });
    if (fields.size() > 1) {
        mainThreadName = fields[1];
    } else if (mainContextMode == MAIN_CONTEXT_BY_THREAD_NAME) {
        mainContextMode = MAIN_CONTEXT_EVERY; // by thread name, but by which?
    }
}

void OrvelProcessorDataBase::InitModuleIdArray(uint32_t mask) {
    for (uint32_t bit = 0; bit < kModuleBits; ++bit) {
        const uint32_t id = 1u << bit;
        if ((mask & id) != 0 && !HasModuleId(id)) {
            AppendModuleId(id);
            InitModuleCreateInfo(id);
        }
    }
}

bool OrvelProcessorDataBase::InitProcessorModuleData(uint32_t id, const Json::Value& json) {
    if (GetProcessorModuleData(id)) {
        return true;
    }
    module::OrvelProcessorModuleDataBase* data = CreateProcessorModuleData(id, json);
    if (!data) {
        ORVEL_LOGW("\"%s\" names no module of this game: %u", kBaseInfoKey, id);
    }
    if (!data || !data->valid) {
        ReleaseProcessorModuleData(data);
        return false;
    }
    const std::lock_guard lock(mMutex);
    moduleData[id] = data;
    return true;
}

void OrvelProcessorDataBase::EraseModuleId(uint32_t id) {
    const std::lock_guard lock(mMutex);
    EraseLocked(id);
}

bool OrvelProcessorDataBase::HasAnyModuleId() const { return mHasAnyModuleId; }

bool OrvelProcessorDataBase::HasModuleId(uint32_t id) const {
    const std::lock_guard lock(mMutex);
    return std::find(moduleIds.begin(), moduleIds.end(), id) != moduleIds.end();
}

std::vector<uint32_t> OrvelProcessorDataBase::GetModuleIds() const {
    const std::lock_guard lock(mMutex);
    return moduleIds;
}

module::OrvelProcessorModuleDataBase* OrvelProcessorDataBase::GetProcessorModuleData(uint32_t id) {
    const std::lock_guard lock(mMutex);
    const auto data = moduleData.find(id);
    return data == moduleData.end() ? nullptr : data->second;
}

bool OrvelProcessorDataBase::WithProcessorModuleData(
    uint32_t id, const std::function<void(const module::OrvelProcessorModuleDataBase&)>& visit) const {
    const std::lock_guard lock(mMutex);
    const auto data = moduleData.find(id);
    if (data == moduleData.end()) {
        return false;
    }
    visit(*data->second);
    return true;
}

void OrvelProcessorDataBase::ColloctExtensionFunctions(
    const std::unordered_map<uint32_t, std::vector<std::string>>& perModule) {
    const std::lock_guard lock(mMutex);
    for (const uint32_t id : moduleIds) {
        const auto names = perModule.find(id);
        if (names == perModule.end()) {
            continue;
        }
        for (const std::string& name : names->second) {
            const auto [needed, isNew] = extensionFunctions.try_emplace(name);
            needed->second.push_back(id);
            if (isNew) {
                mFunctionOrder.push_back(name);
            }
        }
    }
}

void OrvelProcessorDataBase::RemoveExtensionFunction(const std::string& name) {
    const std::lock_guard lock(mMutex);
    const auto needed = extensionFunctions.find(name);
    if (needed == extensionFunctions.end()) {
        return;
    }
    const std::vector<uint32_t> ids = needed->second; // a copy: erasing an id changes the list
    for (const uint32_t id : ids) {
        EraseLocked(id);
    }
}

void OrvelProcessorDataBase::AppendModuleId(uint32_t id) {
    const std::lock_guard lock(mMutex);
    moduleIds.push_back(id);
    mHasAnyModuleId = true;
}

void OrvelProcessorDataBase::EraseLocked(uint32_t id) {
    if (std::erase(moduleIds, id) == 0) {
        return;
    }
    mHasAnyModuleId = !moduleIds.empty();
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
            std::erase(mFunctionOrder, name);
        }
    }
}

} // namespace android::orvel::app
