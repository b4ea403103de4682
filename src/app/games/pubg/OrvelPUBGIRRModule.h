// A module of the PUBG package that the configuration knows and that has nothing to do.
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
