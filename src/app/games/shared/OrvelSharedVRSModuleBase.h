// Coarse shading while the game is shown in a small window.
#pragma once

#include "app/OrvelModuleBase.h"
#include "app/VRSComponent.h"
#include "base/OrvelLog.h"
#include "settings/OrvelSettings.h"

#include <EGL/egldefs.h>

#include <cstdint>

namespace android::orvel::app::module {

/**
 * Shades 2x2 pixels at once while the window is small. It acts at the end of a frame only, so the rate holds from the
 * frame after the window changed, and sets a rate only when that differs.
 * @tparam Derived has the identifier PROCESSOR_MODULE_TYPE
 */
template <typename Derived>
class OrvelSharedVRSModuleBase : public OrvelModuleBase {
public:
    using OrvelModuleBase::OrvelModuleBase;

    uint32_t GetModuleId() const override { return Derived::PROCESSOR_MODULE_TYPE; }
    void RegisterModuleFunctors() override {}
    void UnregisterModuleFunctors() override {}
    void FrameEnd() override;

    static void RegisterGlobalModuleGLHooks(egl_connection_t*) {}

private:
    void SetRate(GLenum rate);

    bool mActive = false; // the coarse rate is in force
    bool mSmallWindowNow = false;
    GLenum mRate = GL_SHADING_RATE_2X2_PIXELS_EXT; // the one set last
};

template <typename Derived>
void OrvelSharedVRSModuleBase<Derived>::FrameEnd() {
    mSmallWindowNow = OrvelSettings::getInstance().getSmallWindowSig() != 0;
    if (mSmallWindowNow == mActive) {
        return;
    }
    mActive = mSmallWindowNow;
    if (mActive) {
        SetRate(GL_SHADING_RATE_2X2_PIXELS_EXT);
        ORVEL_LOGD("sv flag p3: %d", static_cast<int>(mRate - GL_SHADING_RATE_1X1_PIXELS_EXT));
    } else {
        SetRate(GL_SHADING_RATE_1X1_PIXELS_EXT);
    }
}

template <typename Derived>
void OrvelSharedVRSModuleBase<Derived>::SetRate(GLenum rate) {
    mRate = rate;
    VRSComponent::GetInstance().SetShadingRate(rate);
}

} // namespace android::orvel::app::module
