// A stand-in for GL_EXT_multisampled_render_to_texture, which desktop drivers lack: games that draw into multisampled
// textures find the entries, and draw with one sample.
//
// ORVEL_MULTISAMPLED  not empty: the driver has the extension
#pragma once

#include "Entries.h"

namespace android::rig {

/** @return the extension if the stand-in offers it, else "" */
const char* offeredMultisampledExtension();

/** Fills the entries, where the extension is offered and the driver has none of its own. */
void fillMultisampledEntries(GlTable* gl);

} // namespace android::rig
