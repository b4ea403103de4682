// An image of a look-up table, in a PNG file.
#pragma once

#include "next/effects/OrvelLutEffectInstance.h"

#include <cstdint>
#include <cstdio>
#include <png.h>
#include <string>

namespace android::orvel::next {

/** Where an instance is loaded from. */
class OrvelLutEffectInstance::IResource {
public:
    explicit IResource(const std::string& path) : mPath(path) {}
    virtual ~IResource() = default;
    IResource(const IResource&) = delete;
    IResource& operator=(const IResource&) = delete;

protected:
    const std::string mPath;
};

/** A file that is read from its beginning; one that cannot be opened is empty. */
class OrvelLutEffectInstance::PNGResource : public IResource {
public:
    explicit PNGResource(const std::string& path);
    ~PNGResource() override;

    /** @return bytes read, fewer than asked for at the file's end */
    int Read(unsigned char* data, int bytes);

private:
    FILE* const mFile;
};

/**
 * Takes images of eight bits a channel, RGB or RGBA, of up to 4096 x 4096 pixels, as they are stored. Nothing is
 * logged: what a file lacks ends in an answer of false.
 */
class PngImage {
public:
    /** @param file lives longer */
    explicit PngImage(OrvelLutEffectInstance::PNGResource& file) : mFile(file) {}
    ~PngImage();
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;

    /** First of all. @return whether it is an image that we take; what follows is known then */
    bool ReadHeader();
    int Width() const { return mWidth; }
    int Height() const { return mHeight; }
    GLenum InternalFormat() const { return mInternalFormat; }
    uint32_t Bytes() const { return mRowBytes * static_cast<uint32_t>(mHeight); }
    /** @param memory Bytes() long; row by row, the highest first. @return whether the image is whole */
    bool ReadRows(void* memory);

private:
    OrvelLutEffectInstance::PNGResource& mFile;
    png_structp mPng = nullptr;
    png_infop mInfo = nullptr;
    int mWidth = 0;
    int mHeight = 0;
    GLenum mInternalFormat = 0;
    uint32_t mRowBytes = 0;
};

} // namespace android::orvel::next
