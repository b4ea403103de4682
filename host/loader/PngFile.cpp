#include "PngFile.h"

#include <fstream>
#include <string_view>
#include <zlib.h>

namespace android::rig {

namespace {

void appendNumber(std::string& to, uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        to += static_cast<char>(number >> shift);
    }
}

void appendChunk(std::string& to, std::string_view name, std::string_view content) {
    appendNumber(to, static_cast<uint32_t>(content.size()));
    const size_t begin = to.size();
    to += name;
    to += content;
    const auto* summed = reinterpret_cast<const Bytef*>(to.data() + begin);
    appendNumber(to, static_cast<uint32_t>(crc32(0, summed, static_cast<uInt>(to.size() - begin))));
}

std::string compressed(const std::string& raw) {
    uLongf size = compressBound(raw.size());
    std::string result(size, '\0');
    const auto* source = reinterpret_cast<const Bytef*>(raw.data());
    if (compress(reinterpret_cast<Bytef*>(result.data()), &size, source, raw.size()) != Z_OK) {
        size = 0;
    }
    result.resize(size);
    return result;
}

} // namespace

bool writePng(const std::string& path, uint32_t width, uint32_t height, const std::vector<uint8_t>& pixels,
              const std::vector<Colour>& palette) {
    std::string header;
    appendNumber(header, width);
    appendNumber(header, height);
    header += std::string("\x08\x03\x00\x00\x00", 5); // 8 bits a pixel, a palette, nothing special
    std::string colours;
    for (const Colour& colour : palette) {
        colours.append(colour.begin(), colour.end());
    }
    std::string raw;
    for (uint32_t row = height; row-- > 0;) { // the format begins with the highest
        raw += '\0';                          // not filtered
        raw.append(reinterpret_cast<const char*>(pixels.data()) + size_t{row} * width, width);
    }
    std::string file = "\x89PNG\r\n\x1a\n";
    appendChunk(file, "IHDR", header);
    appendChunk(file, "PLTE", colours);
    appendChunk(file, "IDAT", compressed(raw));
    appendChunk(file, "IEND", "");
    std::ofstream stream(path, std::ios::binary);
    stream << file;
    return static_cast<bool>(stream.flush());
}

} // namespace android::rig
