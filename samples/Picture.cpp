#include "Picture.h"

#include "Gl.h"

#include <png.h>

#include <vector>

namespace sample {

void writePicture(const std::string& path, Size size) {
    std::vector<uint8_t> pixels(static_cast<size_t>(size.width) * size.height * 4);
    glReadPixels(0, 0, size.width, size.height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    for (size_t i = 3; i < pixels.size(); i += 4) {
        pixels[i] = 255; // a window has no alpha
    }
    png_image file{};
    file.version = PNG_IMAGE_VERSION;
    file.width = static_cast<png_uint_32>(size.width);
    file.height = static_cast<png_uint_32>(size.height);
    file.format = PNG_FORMAT_RGBA;
    const int upsideDown = -size.width * 4; // GL's first row is the lowest
    if (!png_image_write_to_file(&file, path.c_str(), 0, pixels.data(), upsideDown, nullptr)) {
        fail("%s: %s", path.c_str(), file.message);
    }
}

} // namespace sample
