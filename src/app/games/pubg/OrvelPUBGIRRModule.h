// A module that the tuning service may list for the PUBG package. Nothing here belongs to it: it is valid and hooks
// nothing, so that a configuration that lists it is served like any other.
#pragma once

#include "app/OrvelModuleBase.h"

#include <EGL/egldefs.h>

#include <cstdint>

namespace android::orvel::app::module {

class OrvelPUBGIRRModule : public OrvelModuleBase {
public:
    static constexpr uint32_t PROCESSOR_MODULE_TYPE = 1;
    using OrvelModuleBase::OrvelModuleBase;

    uint32_t GetModuleId() const override { return PROCESSOR_MODULE_TYPE; }
    void RegisterModuleFunctors() override {}
    void UnregisterModuleFunctors() override {}

    static void RegisterGlobalModuleGLHooks(egl_connection_t*) {}
};

} // namespace android::orvel::app::module
