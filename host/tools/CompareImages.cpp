// orvel-compare: how two PNG files of one size differ, as one line of JSON, and optionally as a picture.
#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr char kUsage[] = "usage: orvel-compare A.png B.png [DIFFERENCE.png]\n"
                          "  the difference picture shows |A - B| per channel, brightened so that 1 can be seen\n";
constexpr int kBrighten = 16;

struct Image {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> rgb; // rows from the top, three bytes a pixel
};

std::optional<Image> read(const char* path) {
    png_image file{};
    file.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&file, path)) {
        std::fprintf(stderr, "orvel-compare: %s: %s\n", path, file.message);
        return std::nullopt;
    }
    file.format = PNG_FORMAT_RGB;
    Image image{file.width, file.height, std::vector<uint8_t>(PNG_IMAGE_SIZE(file))};
    if (!png_image_finish_read(&file, nullptr, image.rgb.data(), 0, nullptr)) {
        std::fprintf(stderr, "orvel-compare: %s: %s\n", path, file.message);
        return std::nullopt;
    }
    return image;
}

bool write(const char* path, const Image& image) {
    png_image file{};
    file.version = PNG_IMAGE_VERSION;
    file.width = image.width;
    file.height = image.height;
    file.format = PNG_FORMAT_RGB;
    if (!png_image_write_to_file(&file, path, 0, image.rgb.data(), 0, nullptr)) {
        std::fprintf(stderr, "orvel-compare: %s: %s\n", path, file.message);
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    const auto a = read(argv[1]);
    const auto b = read(argv[2]);
    if (!a || !b) {
        return 1;
    }
    if (a->width != b->width || a->height != b->height) {
        std::fprintf(stderr, "orvel-compare: %ux%u against %ux%u pixels\n", a->width, a->height, b->width, b->height);
        return 1;
    }
    Image difference = *a;
    size_t differentPixels = 0;
    int largest = 0;
    double squares = 0;
    for (size_t pixel = 0; pixel < a->rgb.size(); pixel += 3) {
        bool different = false;
        for (size_t i = pixel; i < pixel + 3; ++i) {
            const int delta = std::abs(a->rgb[i] - b->rgb[i]);
            different |= delta != 0;
            largest = std::max(largest, delta);
            squares += delta * delta;
            difference.rgb[i] = static_cast<uint8_t>(std::min(255, delta * kBrighten));
        }
        differentPixels += different;
    }
    if (argc == 4 && !write(argv[3], difference)) {
        return 1;
    }
    const double meanSquare = squares / static_cast<double>(a->rgb.size());
    // Peak signal to noise ratio in decibels: 10 log10(255^2 / mean squared error); null where nothing differs.
    const std::string psnr = meanSquare > 0 ? std::to_string(10 * std::log10(255.0 * 255.0 / meanSquare)) : "null";
    std::printf(
        "{\"width\": %u, \"height\": %u, \"different_pixels\": %zu, \"largest_difference\": %d, \"psnr\": %s}\n",
        a->width, a->height, differentPixels, largest, psnr.c_str());
    return 0;
}
