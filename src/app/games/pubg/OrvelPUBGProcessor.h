// The processor of the PUBG package.
#pragma once

#include "app/OrvelProcessorBase.h"

#include <EGL/egldefs.h>

#include <cstdint>

namespace android::orvel::app {

class OrvelPUBGProcessor : public OrvelProcessorBase {
public:
    static constexpr uint32_t PROCESSOR_TYPE = 2;

    uint32_t GetProcessorId() override { return PROCESSOR_TYPE; }

    static void RegisterGlobalGLHooks(egl_connection_t*) {}
};

} // namespace android::orvel::app
