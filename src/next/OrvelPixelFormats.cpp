#include "next/OrvelPixelFormats.h"

#include <algorithm>
#include <iterator>

namespace android::orvel::next {

namespace {

struct Row {
    GLenum internalFormat;
    GLenum format; // 0: none
    GLenum type;   // 0: none
    uint32_t size; // bytes a pixel
};

constexpr uint32_t kUnknown = kUnknownPixelSize;

// As whoever draws with these relies on it: 24-bit depth has the type of depth and stencil together, RGB10_A2UI has
// none, and the two plainest colour formats have no size.
constexpr Row kRows[] = {
    {GL_R8, GL_RED, GL_UNSIGNED_BYTE, 1},
    {GL_R8_SNORM, GL_RED, GL_BYTE, 1},
    {GL_R16F, GL_RED, GL_HALF_FLOAT, 2},
    {GL_R32F, GL_RED, GL_FLOAT, 4},
    {GL_R8I, GL_RED_INTEGER, GL_BYTE, 1},
    {GL_R8UI, GL_RED_INTEGER, GL_UNSIGNED_BYTE, 1},
    {GL_R16I, GL_RED_INTEGER, GL_SHORT, 2},
    {GL_R16UI, GL_RED_INTEGER, GL_UNSIGNED_SHORT, 2},
    {GL_R32I, GL_RED_INTEGER, GL_INT, 4},
    {GL_R32UI, GL_RED_INTEGER, GL_UNSIGNED_INT, 4},
    {GL_RG8, GL_RG, GL_UNSIGNED_BYTE, 2},
    {GL_RG8_SNORM, GL_RG, GL_BYTE, 2},
    {GL_RG16F, GL_RG, GL_HALF_FLOAT, 4},
    {GL_RG32F, GL_RG, GL_FLOAT, kUnknown},
    {GL_RG8I, GL_RG_INTEGER, GL_BYTE, 2},
    {GL_RG8UI, GL_RG_INTEGER, GL_UNSIGNED_BYTE, 2},
    {GL_RG16I, GL_RG_INTEGER, GL_SHORT, 4},
    {GL_RG16UI, GL_RG_INTEGER, GL_UNSIGNED_SHORT, 4},
    {GL_RG32I, GL_RG_INTEGER, GL_INT, kUnknown},
    {GL_RG32UI, GL_RG_INTEGER, GL_UNSIGNED_INT, kUnknown},
    {GL_RGB8, GL_RGB, GL_UNSIGNED_BYTE, kUnknown},
    {GL_RGB8_SNORM, GL_RGB, GL_BYTE, 3},
    {GL_SRGB8, GL_RGB, GL_UNSIGNED_BYTE, 3},
    {GL_RGB16F, GL_RGB, GL_HALF_FLOAT, 6},
    {GL_RGB32F, GL_RGB, GL_FLOAT, 12},
    {GL_R11F_G11F_B10F, GL_RGB, GL_UNSIGNED_INT_10F_11F_11F_REV, 4},
    {GL_RGB8I, GL_RGB_INTEGER, GL_BYTE, 3},
    {GL_RGB8UI, GL_RGB_INTEGER, GL_UNSIGNED_BYTE, 3},
    {GL_RGB16I, GL_RGB_INTEGER, GL_SHORT, 6},
    {GL_RGB16UI, GL_RGB_INTEGER, GL_UNSIGNED_SHORT, 6},
    {GL_RGB32I, GL_RGB_INTEGER, GL_INT, 12},
    {GL_RGB32UI, GL_RGB_INTEGER, GL_UNSIGNED_INT, 12},
    {GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, kUnknown},
    {GL_RGBA8_SNORM, GL_RGBA, GL_BYTE, 4},
    {GL_SRGB8_ALPHA8, GL_RGBA, GL_UNSIGNED_BYTE, 4},
    {GL_RGBA16F, GL_RGBA, GL_HALF_FLOAT, 8},
    {GL_RGBA32F, GL_RGBA, GL_FLOAT, 16},
    {GL_RGB10_A2UI, GL_RGBA_INTEGER, 0, 4},
    {GL_RGBA8I, GL_RGBA_INTEGER, GL_BYTE, 4},
    {GL_RGBA8UI, GL_RGBA_INTEGER, GL_UNSIGNED_BYTE, 4},
    {GL_RGBA16I, GL_RGBA_INTEGER, GL_SHORT, 8},
    {GL_RGBA16UI, GL_RGBA_INTEGER, GL_UNSIGNED_SHORT, 8},
    {GL_RGBA32I, GL_RGBA_INTEGER, GL_INT, 16},
    {GL_RGBA32UI, GL_RGBA_INTEGER, GL_UNSIGNED_INT, 16},
    {GL_DEPTH_COMPONENT16, 0, GL_UNSIGNED_SHORT, kUnknown},
    {GL_DEPTH_COMPONENT24, 0, GL_UNSIGNED_INT_24_8, kUnknown},
    {GL_DEPTH24_STENCIL8, 0, GL_UNSIGNED_INT_24_8, kUnknown},
    {GL_DEPTH_COMPONENT32F, 0, GL_FLOAT, kUnknown},
    {GL_DEPTH32F_STENCIL8, 0, GL_FLOAT_32_UNSIGNED_INT_24_8_REV, kUnknown},
};

constexpr Row kNotListed{0, 0, 0, kUnknown};

const Row& rowOf(GLenum internalFormat) {
    const Row* row = std::find_if(std::begin(kRows), std::end(kRows),
                                  [&](const Row& r) { return r.internalFormat == internalFormat; });
    return row == std::end(kRows) ? kNotListed : *row;
}

} // namespace

GLenum PixelFormatOf(GLenum internalFormat) { return rowOf(internalFormat).format; }
GLenum PixelTypeOf(GLenum internalFormat) { return rowOf(internalFormat).type; }
uint32_t PixelSizeOf(GLenum internalFormat) { return rowOf(internalFormat).size; }

} // namespace android::orvel::next
