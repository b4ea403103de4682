// The framework's hooks: without a processor, with empty chains, with one and two nodes, with a processor's
// bookkeeping.
#pragma once

#include <EGL/egldefs.h>

/** Call it once, when the saved tables hold this driver. */
void connectFramework(const android::egl_connection_t& driver);
void registerFrameworkTimes();
void countFrameworkInstructions();
