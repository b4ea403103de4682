// The colour filter of the PUBG package. It is known to the configuration and does not act yet.
#pragma once

#include "app/OrvelModuleBase.h"

#include <EGL/egldefs.h>

#include <cstdint>

namespace android::orvel::app::module {

class OrvelPUBGFilterModule : public OrvelModuleBase {
public:
    static constexpr uint32_t PROCESSOR_MODULE_TYPE = 2;
    using OrvelModuleBase::OrvelModuleBase;

    uint32_t GetModuleId() const override { return PROCESSOR_MODULE_TYPE; }
    void RegisterModuleFunctors() override {}
    void UnregisterModuleFunctors() override {}

    static void RegisterGlobalModuleGLHooks(egl_connection_t*) {}
};

} // namespace android::orvel::app::module
