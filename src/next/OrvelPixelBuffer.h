// A buffer through which pixels go to a texture, or come back.
#pragma once

#include <EGL/egldefs.h>

#include <cstdint>
#include <functional>

namespace android::orvel::next {

class OrvelTexture2D;

/**
 * Used on the thread of the context that it was made in. A buffer of no size is good for nothing: all calls do
 * nothing.
 */
class OrvelPixelBuffer {
public:
    /**
     * The GL buffer itself is made when it is first bound.
     * @param size   bytes
     * @param upload whether pixels go to GL, else they come back
     * @param usage  GL's hint, for example GL_STREAM_DRAW
     */
    OrvelPixelBuffer(uint32_t size, bool upload, GLenum usage);
    ~OrvelPixelBuffer();
    OrvelPixelBuffer(const OrvelPixelBuffer&) = delete;
    OrvelPixelBuffer& operator=(const OrvelPixelBuffer&) = delete;

    /** Makes a new buffer with undefined content; what was bound is bound again. */
    void Gen();
    /** Makes the buffer on first use and remembers what was bound before. */
    void Bind();
    /** Binds what was bound before Bind(). */
    void UnBind();
    /**
     * Maps what is bound.
     * @param length bytes, -1 all
     * @return null when that is not possible
     */
    void* Mapbuffer(long length, long offset);
    void UnMapbuffer();
    /** Forgets the name without deleting it: its context is not current, or gone. */
    void Abandon() { mName = 0; }
    int GetSize() const { return mSize; }

private:
    GLuint mName = 0;
    const GLenum mTarget;
    const GLenum mBindingQuery;
    const GLbitfield mAccess;
    const GLenum mUsage;
    const int32_t mSize;
    bool mValid = true; // until a size of 0 was met
    GLint mPreviousBinding = 0;
};

/** @return the caller's */
OrvelPixelBuffer* CreatePBO(uint32_t size, bool upload, GLenum usage);

/**
 * Lets fill write into the mapped buffer (bytes, address). Nothing happens without a buffer, a function or a mapping.
 */
void UpdatePBO(OrvelPixelBuffer* buffer, const std::function<void(int, void*)>& fill);

// Replaces the texture's whole image; nothing happens when one of the two is null.
void UpdateTextureData(OrvelTexture2D* texture, OrvelPixelBuffer* buffer);
void UpdateTextureData(OrvelTexture2D* texture, void* pixels);

} // namespace android::orvel::next
