// What SGame's shading module adds to a bind and a draw while it is idle, while it learns, and while it acts.
#pragma once

#include <EGL/egldefs.h>

/** Call it once, when the saved tables hold this driver. */
void connectShadingRate(const android::egl_connection_t& driver);
void registerShadingRateTimes();
void countShadingRateInstructions();
