// What goes with a sized internal format of GLES 3.0.
#pragma once

#include <EGL/egldefs.h>

#include <cstdint>

namespace android::orvel::next {

constexpr uint32_t kUnknownPixelSize = ~0u;

/** @return the pixel format of uploads; 0 for depth formats and formats that are not listed */
GLenum PixelFormatOf(GLenum internalFormat);

/** @return the data type of uploads; 0 for RGB10_A2UI and formats that are not listed */
GLenum PixelTypeOf(GLenum internalFormat);

/** @return bytes; kUnknownPixelSize for depth formats, RGB8, RGBA8 and formats that are not listed */
uint32_t PixelSizeOf(GLenum internalFormat);

} // namespace android::orvel::next
