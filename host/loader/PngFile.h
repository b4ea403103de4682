// Writes a picture of a few colours.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace android::rig {

using Colour = std::array<uint8_t, 3>;

/**
 * @param pixels width * height indices into the palette, the lowest row first
 * @return whether the file was written
 */
bool writePng(const std::string& path, uint32_t width, uint32_t height, const std::vector<uint8_t>& pixels,
              const std::vector<Colour>& palette);

} // namespace android::rig
