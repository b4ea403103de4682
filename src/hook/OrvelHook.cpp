#include "hook/OrvelHook.h"

#include "app/ConfiguredModules.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelProcessorDataBase.h"
#include "base/OrvelGuard.h"
#include "hook/SavedEntries.h"
#include "settings/OrvelSettings.h"

namespace android::orvel::hook {

SavedEntries sSaved{};

namespace {

/** Saves a driver's entry. What is ours already was saved before. */
template <typename Entry>
void save(Entry& saved, Entry current, Entry ours) {
    if (current != ours) {
        saved = current;
    }
}

void saveEntries(const egl_connection_t& cnx) {
    const platform_impl_t& platform = cnx.platform;
    save(sSaved.glGetString, platform.glGetString, platformhook::PlatGetStringHooked);
    save(sSaved.glGetStringi, platform.glGetStringi, platformhook::PlatGetStringiHooked);
    save(sSaved.glGetIntegerv, platform.glGetIntegerv, platformhook::PlatGetIntegervHooked);
    save(sSaved.eglCreateContext, platform.eglCreateContext, platformhook::PlatCreateContextHooked);
    save(sSaved.eglDestroyContext, platform.eglDestroyContext, platformhook::PlatDestroyContextHooked);
    save(sSaved.eglMakeCurrent, platform.eglMakeCurrent, platformhook::PlatMakeCurrentHooked);
    save(sSaved.eglGetProcAddress, cnx.egl.eglGetProcAddress, EglGetProcAddressHooked);
}

} // namespace

void RegisterHookedFunctions(egl_connection_t* cnx) {
    if (!app::HasConfiguredModules()) {
        return;
    }
    app::OrvelProcessorBase::RegisterGlobalHooks(cnx);
    saveEntries(*cnx);
    platform_impl_t& platform = cnx->platform;
    platform.eglCreateContext = platformhook::PlatCreateContextHooked;
    platform.eglDestroyContext = platformhook::PlatDestroyContextHooked;
    platform.eglMakeCurrent = platformhook::PlatMakeCurrentHooked;
    platform.glGetStringi = platformhook::PlatGetStringiHooked;
    platform.glGetIntegerv = platformhook::PlatGetIntegervHooked;
    platform.glGetString = platformhook::PlatGetStringHooked;
    cnx->egl.eglGetProcAddress = EglGetProcAddressHooked;
}

void RegisterHookedEGLFunctions(egl_t& egl) { egl.eglGetProcAddress = EglGetProcAddressHooked; }

void InstallHookedPlatformDebugLabelFunctions(platform_impl_t& platform) {
    platform.glGetStringi = platformhook::PlatGetStringiHooked;
    platform.glGetIntegerv = platformhook::PlatGetIntegervHooked;
    platform.glGetString = platformhook::PlatGetStringHooked;
}

void InstallHookedPlatformContextFunctions(platform_impl_t& platform) {
    platform.eglCreateContext = platformhook::PlatCreateContextHooked;
    platform.eglDestroyContext = platformhook::PlatDestroyContextHooked;
    platform.eglMakeCurrent = platformhook::PlatMakeCurrentHooked;
}

void RegisterHookedPlatformFunctions(platform_impl_t& platform) {
    InstallHookedPlatformContextFunctions(platform);
    InstallHookedPlatformDebugLabelFunctions(platform);
}

__eglMustCastToProperFunctionPointerType EGLAPIENTRY EglGetProcAddressHooked(const char* procname) {
    if (procname) {
        guarded("eglGetProcAddress",
                [procname] { OrvelSettings::getInstance().getProcessorData().RemoveExtensionFunction(procname); });
    }
    return sSaved.eglGetProcAddress ? sSaved.eglGetProcAddress(procname) : nullptr;
}

} // namespace android::orvel::hook
