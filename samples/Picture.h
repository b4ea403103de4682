// The finished window as a PNG file.
#pragma once

#include "Options.h"

#include <string>

namespace sample {

/** Reads framebuffer 0, to be called before the swap; ends the program when the file cannot be written. */
void writePicture(const std::string& path, Size window);

} // namespace sample
