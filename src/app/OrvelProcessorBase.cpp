#include "app/OrvelProcessorBase.h"

#include "app/OrvelApplicationUtils.h"
#include "app/OrvelContextManager.h"
#include "app/OrvelModuleBase.h"
#include "app/OrvelProcessorDataBase.h"
#include "app/OrvelSwapHooks.h"
#include "base/OrvelGuard.h"
#include "base/OrvelLog.h"
#include "next/effects/OrvelVisualEffectManager.h"
#include "settings/OrvelSettings.h"

#include <algorithm>
#include <exception>

namespace android::orvel::app {

using module::OrvelModuleBase;

namespace {

/** Calls one operation of all modules, in order; also of those behind one that fails. */
void callEach(const std::vector<OrvelModuleBase*>& modules, void (OrvelModuleBase::*operation)()) {
    for (OrvelModuleBase* each : modules) {
        try {
            (each->*operation)();
        } catch (const std::exception& error) {
            ORVEL_LOGE("end of frame of module %d failed: %s", static_cast<int>(each->GetModuleId()), error.what());
        }
    }
}

} // namespace

void OrvelProcessorBase::OnBegin() {
    for (const uint32_t id : OrvelSettings::getInstance().getProcessorData().GetModuleIds()) {
        OrvelModuleBase* const made = CreateProcessorGLModule(id, this);
        if (made && !made->valid) {
            ReleaseProcessorGLModule(made);
            continue;
        }
        RegisterModule(made);
    }
    if (HasEffectModule()) {
        mEffectManager = new next::OrvelVisualEffectManager;
    }
}

void OrvelProcessorBase::OnEnd() { UnRegisterModules(); }

void OrvelProcessorBase::FrameEnd() {
    callEach(mModules, &OrvelModuleBase::FrameEnd);
    auto& contexts = OrvelContextManager::GetInstance();
    if (mIsMainRenderContext && contexts.CheckMainRenderContextByPipelineInfo()) {
        contexts.UpdateMainRenderContextByPipelineInfo();
    }
    if (mEffectManager) {
        if (!mEffectManager->IsLoadResourceEnabled() && EnableEffectManagerLoadResource()) {
            mEffectManager->EnableLoadResource();
        }
        guarded("end of frame of effects", [this] { mEffectManager->FrameEnd(); });
    }
}

void OrvelProcessorBase::PostFrameEnd() {
    callEach(mModules, &OrvelModuleBase::PostFrameEnd);
    ++mFrameId;
}

bool OrvelProcessorBase::IsRegistered(const OrvelModuleBase* module) const {
    return std::find(mModules.begin(), mModules.end(), module) != mModules.end();
}

void OrvelProcessorBase::RegisterModule(OrvelModuleBase* added) {
    if (added && !IsRegistered(added)) {
        mModules.push_back(added);
        added->RegisterModuleFunctors();
    }
}

void OrvelProcessorBase::UnRegisterModule(OrvelModuleBase* removed) {
    if (removed && IsRegistered(removed)) {
        std::erase(mModules, removed);
        removed->UnregisterModuleFunctors();
        ReleaseProcessorGLModule(removed);
    }
}

void OrvelProcessorBase::UnRegisterModules() {
    while (!mModules.empty()) {
        UnRegisterModule(mModules.back());
    }
}

OrvelModuleBase* OrvelProcessorBase::GetGLModule(uint32_t moduleId) const {
    const auto found = std::find_if(mModules.begin(), mModules.end(), [moduleId](const OrvelModuleBase* each) {
        return each->GetModuleId() == moduleId;
    });
    return found == mModules.end() ? nullptr : *found;
}

void OrvelProcessorBase::UpdateMainRenderContextStatus(bool isMain) {
    if (mIsMainRenderContext != isMain) {
        mIsMainRenderContext = isMain;
    }
}

void OrvelProcessorBase::RegisterGlobalHooks(egl_connection_t* cnx) {
    OrvelModuleBase::RegisterModuleGlobalGLHooks(cnx);
    RegisterProcessorGlobalGLHooks(cnx);
    cnx->platform.eglSwapBuffers = PlatSwapBuffersHooked;
    cnx->platform.eglSwapBuffersWithDamageKHR = PlatSwapBuffersWithDamageKHRHooked;
}

} // namespace android::orvel::app
