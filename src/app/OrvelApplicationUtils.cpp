#include "app/OrvelApplicationUtils.h"

#include "app/OrvelModuleBase.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelProcessorDataBase.h"
#include "app/OrvelProcessorModuleDataBase.h"
#include "app/games/pubg/OrvelPUBGData.h"
#include "app/games/pubg/OrvelPUBGFilterModule.h"
#include "app/games/pubg/OrvelPUBGFilterModuleData.h"
#include "app/games/pubg/OrvelPUBGIRRModule.h"
#include "app/games/pubg/OrvelPUBGIRRModuleData.h"
#include "app/games/pubg/OrvelPUBGProcessor.h"
#include "app/games/sgame/OrvelSGameData.h"
#include "app/games/sgame/OrvelSGameFilterModule.h"
#include "app/games/sgame/OrvelSGameFilterModuleData.h"
#include "app/games/sgame/OrvelSGameProcessor.h"
#include "app/games/sgame/OrvelSGameVRSModule.h"
#include "app/games/sgame/OrvelSGameVRSModuleData.h"
#include "app/games/shared/OrvelSharedProcessor.h"
#include "app/games/shared/OrvelSharedProcessorData.h"
#include "app/games/shared/OrvelSharedVRSModuleData.h"
#include "app/games/shared/OrvelSharedVRSModules.h"
#include "settings/OrvelSettings.h"

#include <functional>
#include <unordered_map>
#include <unordered_set>

namespace android::orvel::app {

namespace {

// Written at start-up, read for the life of the process, to its last moment: never destroyed.
auto& gCreateProcessorFunc = *new std::function<OrvelProcessorBase*()>;
void (*gCollectGLFunc)(egl_connection_t*) = nullptr;
void (*gModuleCreateInfoFunc)(uint32_t moduleId) = nullptr;
auto& gCreateModuleMap =
    *new std::unordered_map<uint32_t, std::function<module::OrvelModuleBase*(OrvelProcessorBase*)>>;
auto& gCollectModuleFuncMap = *new std::unordered_map<uint32_t, void (*)(egl_connection_t*)>;
auto& gCreateModuleDataMap =
    *new std::unordered_map<uint32_t, std::function<module::OrvelProcessorModuleDataBase*(const Json::Value&)>>;

uint32_t ownType() { return OrvelSettings::getInstance().mApplicationType; }

template <typename Processor>
void registerProcessor(void (*moduleCreateInfo)(uint32_t)) {
    gCreateProcessorFunc = [] { return new Processor; };
    gModuleCreateInfoFunc = moduleCreateInfo;
    gCollectGLFunc = Processor::RegisterGlobalGLHooks;
}

/** Registers the module and its parameters if the id is theirs. */
template <typename Module, typename ModuleData>
void registerModule(uint32_t id) {
    if (id == Module::PROCESSOR_MODULE_TYPE) {
        gCollectModuleFuncMap[id] = Module::RegisterGlobalModuleGLHooks;
        gCreateModuleMap[id] = [](OrvelProcessorBase* processor) { return new Module(processor); };
    }
    if (id == ModuleData::MODULE_DATA_TYPE) {
        gCreateModuleDataMap[id] = [](const Json::Value& json) { return new ModuleData(json); };
    }
}

} // namespace

bool UsingRenderController(uint32_t appType) {
    static const auto& types = *new std::unordered_set<uint32_t>{APP_TYPE_SGAME, APP_TYPE_PUBG,  APP_TYPE_QQLIVE,
                                                                 APP_TYPE_7,     APP_TYPE_AWEME, APP_TYPE_BILI};
    return types.count(appType != APP_TYPE_NONE ? appType : ownType()) != 0;
}

bool IsSharedProcessor() {
    static const auto& types =
        *new std::unordered_set<uint32_t>{APP_TYPE_QQLIVE, APP_TYPE_7, APP_TYPE_AWEME, APP_TYPE_BILI};
    return types.count(ownType()) != 0;
}

OrvelProcessorDataBase* CreateProcessorData() {
    switch (ownType()) {
    case APP_TYPE_NONE:
        return nullptr;
    case APP_TYPE_SGAME:
        return new OrvelSGameData;
    case APP_TYPE_PUBG:
        return new OrvelPUBGData;
    default:
        return IsSharedProcessor() ? new OrvelSharedProcessorData : new OrvelProcessorDataBase;
    }
}

void ReleaseProcessorData(OrvelProcessorDataBase* data) { delete data; }

void InitProcessorCreateInfo() {
    const uint32_t type = ownType();
    switch (type) {
    case APP_TYPE_NONE:
        return;
    case APP_TYPE_SGAME:
        return registerProcessor<OrvelSGameProcessor>(InitSGameModuleCreateInfo);
    case APP_TYPE_PUBG:
        return registerProcessor<OrvelPUBGProcessor>(InitPUBGModuleCreateInfo);
    default:
        break;
    }
    if (IsSharedProcessor()) {
        OrvelSharedProcessor::PROCESSOR_TYPE = type;
        return registerProcessor<OrvelSharedProcessor>(InitSharedModuleCreateInfo);
    }
    if (!gCollectGLFunc) {
        gCollectGLFunc = DummyCollect;
    }
    if (!gCreateProcessorFunc) {
        gCreateProcessorFunc = [] { return nullptr; };
    }
    if (!gModuleCreateInfoFunc) {
        gModuleCreateInfoFunc = DummyModuleCreate;
    }
}

void InitModuleCreateInfo(uint32_t id) {
    if (gModuleCreateInfoFunc) {
        gModuleCreateInfoFunc(id);
    }
}

void InitPUBGModuleCreateInfo(uint32_t id) {
    registerModule<module::OrvelPUBGIRRModule, module::OrvelPUBGIRRModuleData>(id);
    registerModule<module::OrvelPUBGFilterModule, module::OrvelPUBGFilterModuleData>(id);
    registerModule<module::OrvelPUBGSharedVRSModule, module::OrvelSharedVRSModuleData>(id);
}

void InitSGameModuleCreateInfo(uint32_t id) {
    registerModule<module::OrvelSGameVRSModule, module::OrvelSGameVRSModuleData>(id);
    registerModule<module::OrvelSGameFilterModule, module::OrvelSGameFilterModuleData>(id);
    registerModule<module::OrvelSGameSharedVRSModule, module::OrvelSharedVRSModuleData>(id);
}

void InitSharedModuleCreateInfo(uint32_t id) {
    registerModule<module::OrvelCommonSharedVRSModule, module::OrvelSharedVRSModuleData>(id);
}

void DummyModuleCreate(uint32_t) {}

void DummyCollect(egl_connection_t*) {}

OrvelProcessorBase* CreateGLProcessor() { return gCreateProcessorFunc(); }

void ReleaseGLProcessor(OrvelProcessorBase* processor) { delete processor; }

void RegisterProcessorGlobalGLHooks(egl_connection_t* cnx) {
    if (gCollectGLFunc) {
        gCollectGLFunc(cnx);
    }
}

module::OrvelProcessorModuleDataBase* CreateProcessorModuleData(uint32_t id, const Json::Value& json) {
    const auto create = gCreateModuleDataMap.find(id);
    return create == gCreateModuleDataMap.end() ? nullptr : create->second(json);
}

void ReleaseProcessorModuleData(module::OrvelProcessorModuleDataBase* data) { delete data; }

void RegisterProcessorModuleGlobalGLHooks(uint32_t id, egl_connection_t* cnx) {
    if (const auto collect = gCollectModuleFuncMap.find(id); collect != gCollectModuleFuncMap.end()) {
        collect->second(cnx);
    }
}

module::OrvelModuleBase* CreateProcessorGLModule(uint32_t id, OrvelProcessorBase* processor) {
    const auto create = gCreateModuleMap.find(id);
    return create == gCreateModuleMap.end() ? nullptr : create->second(processor);
}

void ReleaseProcessorGLModule(module::OrvelModuleBase* glModule) { delete glModule; }

} // namespace android::orvel::app
