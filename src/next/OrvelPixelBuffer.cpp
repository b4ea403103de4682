#include "next/OrvelPixelBuffer.h"

#include "next/OrvelNext.h"
#include "next/OrvelTexture.h"

namespace android::orvel::next {

OrvelPixelBuffer::OrvelPixelBuffer(uint32_t size, bool upload, GLenum usage)
    : mTarget(upload ? GL_PIXEL_UNPACK_BUFFER : GL_PIXEL_PACK_BUFFER),
      mBindingQuery(upload ? GL_PIXEL_UNPACK_BUFFER_BINDING : GL_PIXEL_PACK_BUFFER_BINDING),
      mAccess(upload ? GL_MAP_WRITE_BIT : GL_MAP_READ_BIT),
      mUsage(usage),
      mSize(static_cast<int32_t>(size)) {}

OrvelPixelBuffer::~OrvelPixelBuffer() {
    if (mName != 0) {
        gl.glDeleteBuffers(1, &mName);
    }
}

void OrvelPixelBuffer::Gen() {
    if (mName != 0) {
        gl.glDeleteBuffers(1, &mName);
        mName = 0;
    }
    if (mSize == 0) {
        mValid = false;
        return;
    }
    gl.glGenBuffers(1, &mName);
    gl.glGetIntegerv(mBindingQuery, &mPreviousBinding);
    gl.glBindBuffer(mTarget, mName);
    gl.glBufferData(mTarget, mSize, nullptr, mUsage);
    gl.glBindBuffer(mTarget, static_cast<GLuint>(mPreviousBinding));
}

void OrvelPixelBuffer::Bind() {
    if (mValid && mName == 0) {
        Gen();
    }
    if (!mValid) {
        return;
    }
    gl.glGetIntegerv(mBindingQuery, &mPreviousBinding);
    gl.glBindBuffer(mTarget, mName);
}

void OrvelPixelBuffer::UnBind() {
    if (mValid) {
        gl.glBindBuffer(mTarget, static_cast<GLuint>(mPreviousBinding));
    }
}

void* OrvelPixelBuffer::Mapbuffer(long length, long offset) {
    if (!mValid) {
        return nullptr;
    }
    return gl.glMapBufferRange(mTarget, offset, length == -1 ? mSize : length, mAccess);
}

void OrvelPixelBuffer::UnMapbuffer() {
    if (mValid) {
        gl.glUnmapBuffer(mTarget);
    }
}

OrvelPixelBuffer* CreatePBO(uint32_t size, bool upload, GLenum usage) {
    return new OrvelPixelBuffer(size, upload, usage);
}

void UpdatePBO(OrvelPixelBuffer* buffer, const std::function<void(int, void*)>& fill) {
    if (!buffer || !fill) {
        return;
    }
    buffer->Bind();
    if (void* mapped = buffer->Mapbuffer(-1, 0)) {
        fill(buffer->GetSize(), mapped);
        buffer->UnMapbuffer();
    }
    buffer->UnBind();
}

void UpdateTextureData(OrvelTexture2D* texture, OrvelPixelBuffer* buffer) {
    if (!texture || !buffer) {
        return;
    }
    buffer->Bind();
    texture->Bind();
    texture->SubImage2D(nullptr, 0, 0, 0, -1, -1);
    texture->UnBind();
    buffer->UnBind();
}

void UpdateTextureData(OrvelTexture2D* texture, void* pixels) {
    if (!texture || !pixels) {
        return;
    }
    texture->Bind();
    texture->SubImage2D(pixels, 0, 0, 0, -1, -1);
    texture->UnBind();
}

} // namespace android::orvel::next
