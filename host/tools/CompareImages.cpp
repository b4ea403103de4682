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

constexpr char kUsage[] = "usage: orvel-compare A.png B.png [DIFFERENCE.png] [--where-equal C.png D.png]\n"
                          "  the difference picture shows |A - B| per channel, brightened so that 1 can be seen\n"
                          "  --where-equal adds the counts among those pixels that C and D have in common\n";
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

double luma(const Image& image, uint32_t x, uint32_t y) { // Rec. 601
    const uint8_t* pixel = &image.rgb[(size_t{y} * image.width + x) * 3];
    return 0.299 * pixel[0] + 0.587 * pixel[1] + 0.114 * pixel[2];
}

/**
 * Structural similarity of the luma, the mean over windows of 8 by 8 pixels that overlap by half (Wang et al., "Image
 * quality assessment: from error visibility to structural similarity", 2004, with K1 = 0.01 and K2 = 0.03).
 * @return 1 for equal pictures; nothing for pictures smaller than a window
 */
std::optional<double> structuralSimilarity(const Image& a, const Image& b) {
    constexpr uint32_t kSide = 8;
    constexpr double kCount = kSide * kSide;
    constexpr double kC1 = 0.01 * 255 * 0.01 * 255;
    constexpr double kC2 = 0.03 * 255 * 0.03 * 255;
    double sum = 0;
    size_t windows = 0;
    for (uint32_t top = 0; top + kSide <= a.height; top += kSide / 2) {
        for (uint32_t left = 0; left + kSide <= a.width; left += kSide / 2) {
            double sumA = 0, sumB = 0, sumAA = 0, sumBB = 0, sumAB = 0;
            for (uint32_t y = top; y < top + kSide; ++y) {
                for (uint32_t x = left; x < left + kSide; ++x) {
                    const double pixelA = luma(a, x, y);
                    const double pixelB = luma(b, x, y);
                    sumA += pixelA;
                    sumB += pixelB;
                    sumAA += pixelA * pixelA;
                    sumBB += pixelB * pixelB;
                    sumAB += pixelA * pixelB;
                }
            }
            const double meanA = sumA / kCount;
            const double meanB = sumB / kCount;
            const double varianceA = sumAA / kCount - meanA * meanA;
            const double varianceB = sumBB / kCount - meanB * meanB;
            const double covariance = sumAB / kCount - meanA * meanB;
            sum += (2 * meanA * meanB + kC1) * (2 * covariance + kC2) /
                   ((meanA * meanA + meanB * meanB + kC1) * (varianceA + varianceB + kC2));
            ++windows;
        }
    }
    return windows ? std::optional(sum / static_cast<double>(windows)) : std::nullopt;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<const char*> paths(argv + 1, argv + argc);
    std::optional<Image> masks[2];
    const auto option = std::find_if(paths.begin(), paths.end(),
                                     [](const char* word) { return std::strcmp(word, "--where-equal") == 0; });
    if (option != paths.end()) {
        if (paths.end() - option != 3) {
            std::fputs(kUsage, stderr);
            return 2;
        }
        masks[0] = read(option[1]);
        masks[1] = read(option[2]);
        if (!masks[0] || !masks[1]) {
            return 1;
        }
        paths.erase(option, paths.end());
    }
    if (paths.size() != 2 && paths.size() != 3) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    const auto a = read(paths[0]);
    const auto b = read(paths[1]);
    if (!a || !b) {
        return 1;
    }
    for (const Image* other : {&*b, masks[0] ? &*masks[0] : &*a, masks[1] ? &*masks[1] : &*a}) {
        if (a->width != other->width || a->height != other->height) {
            std::fprintf(stderr, "orvel-compare: %ux%u against %ux%u pixels\n", a->width, a->height, other->width,
                         other->height);
            return 1;
        }
    }
    Image difference = *a;
    size_t differentPixels = 0;
    size_t commonPixels = 0;
    size_t commonDifferent = 0;
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
        if (masks[0] && std::memcmp(&masks[0]->rgb[pixel], &masks[1]->rgb[pixel], 3) == 0) {
            ++commonPixels;
            commonDifferent += different;
        }
    }
    if (paths.size() == 3 && !write(paths[2], difference)) {
        return 1;
    }
    const double meanSquare = squares / static_cast<double>(a->rgb.size());
    // Peak signal to noise ratio in decibels: 10 log10(255^2 / mean squared error); null where nothing differs.
    const std::string psnr = meanSquare > 0 ? std::to_string(10 * std::log10(255.0 * 255.0 / meanSquare)) : "null";
    const auto similarity = structuralSimilarity(*a, *b);
    std::printf("{\"width\": %u, \"height\": %u, \"different_pixels\": %zu, \"largest_difference\": %d, "
                "\"psnr\": %s, \"ssim\": %s",
                a->width, a->height, differentPixels, largest, psnr.c_str(),
                similarity ? std::to_string(*similarity).c_str() : "null");
    if (masks[0]) {
        std::printf(", \"common_pixels\": %zu, \"different_common_pixels\": %zu", commonPixels, commonDifferent);
    }
    std::puts("}");
    return 0;
}
