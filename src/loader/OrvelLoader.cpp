#include "loader/OrvelLoader.h"

#include "app/ConfiguredModules.h"
#include "app/OrvelApplicationUtils.h"
#include "app/OrvelProcessorDataBase.h"
#include "base/OrvelExport.h"
#include "base/OrvelGuard.h"
#include "base/OrvelLog.h"
#include "hook/OrvelHook.h"
#include "loader/OrvelLegacyHooks.h"
#include "loader/OrvelThreadKey.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"
#include "settings/orvel_modify_params.h"

namespace android {

namespace {

OrvelStubImpl& impl = *new OrvelStubImpl; // never destroyed: render threads swap while the process ends
bool mInitialized = false;                // initOrvel has run, whatever it came to; for the process, in spite of the m

gl_hooks_t* gles2Table(egl_connection_t* cnx) { return cnx ? cnx->hooks[egl_connection_t::GLESv2_INDEX] : nullptr; }

/**
 * Resolves the extension functions that this process needs, which is what asking for them does, and drops modules that
 * need one which the driver lacks.
 */
void resolveExtensionFunctions(const orvel::next::MissingTest& isMissing) {
    const auto* prefs = orvel::OrvelSettings::getInstance().mPrefs;
    if (orvel::app::HasConfiguredModules()) {
        prefs->mProcessorData->CheckExtensionFunctions(isMissing);
    }
    if (prefs && prefs->mShadingRateEnabled) { // legacy games have no modules; either function will do
        isMissing("glShadingRateQCOM");
        isMissing("glShadingRateEXT");
    }
}

void installFramework(egl_connection_t* cnx) {
    const auto& settings = orvel::OrvelSettings::getInstance();
    const OrvelApplicationType type = settings.mApplicationType;
    orvel::hook::RegisterHookedFunctions(cnx);
    // The two legacy overrides come last and replace what the registration wrote into the same entries.
    const auto* prefs = settings.mPrefs;
    if (prefs && prefs->mTexAnisotropyEnabled) {
        installOrvelPUBGHooks(gles2Table(cnx)); // by the preference alone, whatever the type
    }
    if (prefs && type == APP_TYPE_SGAME && prefs->mDynamicDFIEnabled) {
        installOrvelSGAMEHooks(cnx);
    }
}

} // namespace

gl_hooks_t* OrvelStubImpl::getGLThreadSpecific(const gl_hooks_t* hooks) { return const_cast<gl_hooks_t*>(hooks); }
void OrvelStubImpl::eglCreateContext(int version) { orvel::hookEglCreateContext(version); }
void OrvelStubImpl::eglDestroyContext() { orvel::hookEglDestroyContext(); }
bool OrvelStubImpl::isEnabled() { return orvel::isOrvelEnabled(); }
void OrvelStubImpl::eglSwapBuffersEnd() {} // swap-end work runs inside our own eglSwapBuffers hook

void OrvelStubImpl::earlyInitOrvel(egl_connection_t* cnx) {
    if (!orvel::hook::EnableDebugOrvelLayer()) {
        initOrvel(cnx, false);
    }
}

void OrvelStubImpl::lateInitOrvel(egl_connection_t* cnx) {
    if (orvel::hook::EnableDebugOrvelLayer()) {
        initOrvel(cnx, false);
    }
}

void OrvelStubImpl::initOrvel(egl_connection_t* cnx, bool) {
    if (mInitialized) {
        return;
    }
    mInitialized = true;    // also for a disabled process and for a start that fails half-way: none tries again
    if (!gles2Table(cnx)) { // nothing to hook: the process stays disabled for good
        auto* prefs = orvel::OrvelSettings::getInstance().mPrefs;
        if (prefs && prefs->mEnabled) {
            prefs->mEnabled = false;
            ORVEL_LOGE("no GLES 2 table in connection %p, library disabled", static_cast<void*>(cnx));
        }
    }
    if (!orvel::isOrvelEnabled()) {
        return;
    }
    orvel::guarded("installation", [cnx] { // a failing start must not take the game with it
        orvel::next::InitNextFunctions(cnx, resolveExtensionFunctions); // before anything in cnx is overwritten
        if (orvel::app::UsingRenderController(0)) {
            installFramework(cnx);
        } else {
            installVoHooks(cnx);
        }
    });
}

bool orvel::isOrvelEnabled() {
    const auto* prefs = OrvelSettings::getInstance().mPrefs;
    return prefs && prefs->mEnabled;
}

void orvel::hookEglCreateContext(int) {}
void orvel::hookEglDestroyContext() {}
gl_hooks_t* orvel::getGLHooks() { return getOrvelHooks(); }

} // namespace android

extern "C" ORVEL_EXPORT void* createInstance() {
    android::orvel::createThreadSpecificKey();
    android::orvel::guarded("start-up", android::initGameSetting); // as above
    return static_cast<android::OrvelStub*>(&android::impl);
}

extern "C" ORVEL_EXPORT void destroyInstance() {}
