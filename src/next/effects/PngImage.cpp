#include "next/effects/PngImage.h"

#include <csetjmp>

namespace android::orvel::next {

using PNGResource = OrvelLutEffectInstance::PNGResource;

PNGResource::PNGResource(const std::string& path) : IResource(path), mFile(std::fopen(mPath.c_str(), "rbe")) {}

PNGResource::~PNGResource() {
    if (mFile) {
        std::fclose(mFile);
    }
}

int PNGResource::Read(unsigned char* data, int bytes) {
    return mFile ? static_cast<int>(std::fread(data, 1, static_cast<size_t>(bytes), mFile)) : 0;
}

namespace {

constexpr int kSignatureBytes = 8;
constexpr png_uint_32 kMaxSize = 4096;
static_assert(uint64_t{kMaxSize} * kMaxSize * 4 <= INT32_MAX, "a pixel buffer counts its bytes in 32 bits");

// libpng leaves a function of its own that failed by longjmp: no object with a destructor may live between it and the
// setjmp of ours that called it.
[[noreturn]] void fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }

void ignoreWarning(png_structp, png_const_charp) {}

void pngReadResource(png_structp png, png_bytep data, png_size_t bytes) {
    auto* file = static_cast<PNGResource*>(png_get_io_ptr(png));
    const int wanted = bytes <= INT32_MAX ? static_cast<int>(bytes) : -1;
    if (wanted < 0 || file->Read(data, wanted) < wanted) {
        png_error(png, "the file is too short");
    }
}

GLenum internalFormatOf(int colourType) {
    switch (colourType) {
    case PNG_COLOR_TYPE_RGB:
        return GL_RGB8;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return GL_RGBA8;
    default:
        return 0;
    }
}

} // namespace

PngImage::~PngImage() { png_destroy_read_struct(&mPng, &mInfo, nullptr); }

bool PngImage::ReadHeader() {
    unsigned char signature[kSignatureBytes];
    if (mFile.Read(signature, kSignatureBytes) < kSignatureBytes || png_sig_cmp(signature, 0, kSignatureBytes) != 0) {
        return false;
    }
    mPng = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, ignoreWarning);
    mInfo = mPng ? png_create_info_struct(mPng) : nullptr;
    if (!mInfo) {
        return false;
    }
    if (setjmp(png_jmpbuf(mPng)) != 0) {
        return false;
    }
    png_set_read_fn(mPng, &mFile, pngReadResource);
    png_set_sig_bytes(mPng, kSignatureBytes);
    png_set_user_limits(mPng, kMaxSize, kMaxSize);
    png_read_info(mPng, mInfo);
    mWidth = static_cast<int>(png_get_image_width(mPng, mInfo));
    mHeight = static_cast<int>(png_get_image_height(mPng, mInfo));
    mRowBytes = static_cast<uint32_t>(png_get_rowbytes(mPng, mInfo));
    mInternalFormat = internalFormatOf(png_get_color_type(mPng, mInfo));
    return mInternalFormat != 0 && png_get_bit_depth(mPng, mInfo) == 8;
}

bool PngImage::ReadRows(void* memory) {
    if (setjmp(png_jmpbuf(mPng)) != 0) {
        return false;
    }
    const int passes = png_set_interlace_handling(mPng);
    for (int pass = 0; pass < passes; ++pass) {
        auto* row = static_cast<png_bytep>(memory);
        for (int y = 0; y < mHeight; ++y, row += mRowBytes) {
            png_read_row(mPng, row, nullptr);
        }
    }
    return true;
}

} // namespace android::orvel::next
