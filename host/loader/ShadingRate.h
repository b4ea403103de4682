// A stand-in for the shading-rate extensions that desktop drivers lack. It changes nothing that is drawn: it keeps the
// state that a driver would keep and tells at every draw which rate was in force.
//
// ORVEL_SHADING_RATE        ext, qcom or both: which extensions the driver has
// ORVEL_SHADING_RATE_TRACE  a file that gets a line of JSON for each draw
// ORVEL_SHADING_RATE_VIEW   a folder for pictures of the frames that ORVEL_SHADING_RATE_FRAMES lists
#pragma once

#include "Entries.h"

namespace android::rig {

/** @return the extensions that the stand-in offers, separated by blanks */
const char* offeredShadingRateExtensions();

/** Fills the entries of what is offered. */
void fillShadingRateEntries(GlTable* gl);

/** Puts observers in front of what draws and what the stand-in's state depends on. Does nothing when nobody asked. */
void observeShadingRates(GlTable* gl, egl_t* egl);

/** Before the driver swaps: writes the frame's pictures, if it is one of those. */
void endShadingRateFrame();

} // namespace android::rig
