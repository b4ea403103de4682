// Owners of a GL texture, for images that effects look up.
#pragma once

#include "next/OrvelPixelFormats.h"

#include <EGL/egldefs.h>

#include <cstdint>

namespace android::orvel::next {

/**
 * A texture of any target. Used on the thread of the context that it was made in. The setters of parameters act on what
 * is bound to the target: bind first.
 */
class OrvelTexture {
public:
    OrvelTexture() = default;
    virtual ~OrvelTexture();
    OrvelTexture(const OrvelTexture&) = delete;
    OrvelTexture& operator=(const OrvelTexture&) = delete;

    virtual int GetWidth() const { return 1; }
    virtual int GetHeight() const { return 1; }
    virtual int GetDepth() const { return 1; }
    virtual void SetWidth(int /*width*/) {}
    virtual void SetHeight(int /*height*/) {}

    /** Makes the name on first use and remembers what was bound before. */
    void Bind();
    /** Binds what was bound before Bind(). */
    void UnBind();
    void GenGLTexture();
    void DeleteGLTexture();
    /** Forgets the name without deleting it: its context is not current, or gone. */
    void Abandon() { mName = 0; }

    OrvelTexture& SetMinFilter(int value) { return SetParameter(GL_TEXTURE_MIN_FILTER, value); }
    OrvelTexture& SetMagFilter(int value) { return SetParameter(GL_TEXTURE_MAG_FILTER, value); }
    OrvelTexture& SetWrapS(int value) { return SetParameter(GL_TEXTURE_WRAP_S, value); }
    OrvelTexture& SetWrapT(int value) { return SetParameter(GL_TEXTURE_WRAP_T, value); }
    OrvelTexture& SetWrapR(int value) { return SetParameter(GL_TEXTURE_WRAP_R, value); }
    OrvelTexture& SetSwizzleR(int value) { return SetParameter(GL_TEXTURE_SWIZZLE_R, value); }
    OrvelTexture& SetSwizzleG(int value) { return SetParameter(GL_TEXTURE_SWIZZLE_G, value); }
    OrvelTexture& SetSwizzleB(int value) { return SetParameter(GL_TEXTURE_SWIZZLE_B, value); }
    OrvelTexture& SetSwizzleA(int value) { return SetParameter(GL_TEXTURE_SWIZZLE_A, value); }

    void SetMipLevels(int levels) { mMipLevels = levels; }
    /** A changed format deletes the texture, whose storage cannot change. Deliberate: the name is kept. */
    void SetInternalFormat(GLenum internalFormat);
    GLenum GetFormat();
    GLenum GetDataType();
    /** @return bytes, kUnknownPixelSize for formats without an answer */
    uint32_t GetPixelSizeInByte();

protected:
    OrvelTexture& SetParameter(GLenum parameter, int value);

    GLuint mName = 0;
    GLenum mTarget = GL_TEXTURE_2D;
    GLenum mBindingQuery = GL_TEXTURE_BINDING_2D;
    GLenum mInternalFormat = 0;
    GLenum mFormat = 0; // 0: not derived yet, or none
    GLenum mType = 0;
    uint32_t mPixelSize = kUnknownPixelSize;
    int32_t mMipLevels = 1;
    GLint mPreviousBinding = 0;
};

class OrvelTexture2D : public OrvelTexture {
public:
    int GetWidth() const override { return mWidth; }
    int GetHeight() const override { return mHeight; }
    void SetWidth(int width) override { mWidth = width; }
    void SetHeight(int height) override { mHeight = height; }

    /** Allocates what is bound. */
    void Storage2D();
    /**
     * Uploads a part of a level into what is bound; with w or h -1 the whole of level 0, whatever else is asked.
     * @param data pixels of the texture's format and type, or an offset into the bound unpack buffer
     */
    void SubImage2D(const void* data, int level, int x, int y, int w, int h);

private:
    int32_t mWidth = 0;
    int32_t mHeight = 0;
};

/** @return a texture with one level of storage, the caller's; what was bound is bound again */
OrvelTexture2D* CreateTexture2D(GLenum internalFormat, int width, int height);

} // namespace android::orvel::next
