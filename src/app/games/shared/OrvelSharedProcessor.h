// The processor of the games that need no analysis of their own.
#pragma once

#include "app/OrvelProcessorBase.h"

#include <EGL/egldefs.h>

#include <cstdint>

namespace android::orvel::app {

class OrvelProcessorDataBase;

/** Watches nothing: it carries modules that work on any game. */
class OrvelSharedProcessor : public OrvelProcessorBase {
public:
    static uint32_t PROCESSOR_TYPE; // the application type that it serves; written once, at start-up

    OrvelSharedProcessor();
    uint32_t GetProcessorId() override { return PROCESSOR_TYPE; }

    static void RegisterGlobalGLHooks(egl_connection_t* cnx);

protected:
    OrvelProcessorDataBase* mData; // the process's configuration
};

} // namespace android::orvel::app
