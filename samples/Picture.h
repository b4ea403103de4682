// Pictures as PNG files.
#pragma once

#include "Options.h"

#include <string>

namespace sample {

/** Reads the framebuffer that is bound for reading; ends the program when the file cannot be written. */
void writePicture(const std::string& path, Size size);

} // namespace sample
