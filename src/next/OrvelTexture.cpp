#include "next/OrvelTexture.h"

#include "next/OrvelNext.h"

namespace android::orvel::next {

OrvelTexture::~OrvelTexture() { DeleteGLTexture(); }

void OrvelTexture::Bind() {
    GenGLTexture();
    gl.glGetIntegerv(mBindingQuery, &mPreviousBinding);
    gl.glBindTexture(mTarget, mName);
}

void OrvelTexture::UnBind() { gl.glBindTexture(mTarget, static_cast<GLuint>(mPreviousBinding)); }

void OrvelTexture::GenGLTexture() {
    if (mName == 0) {
        gl.glGenTextures(1, &mName);
    }
}

void OrvelTexture::DeleteGLTexture() {
    if (mName != 0) {
        gl.glDeleteTextures(1, &mName);
    }
}

OrvelTexture& OrvelTexture::SetParameter(GLenum parameter, int value) {
    gl.glTexParameteri(mTarget, parameter, value);
    return *this;
}

void OrvelTexture::SetInternalFormat(GLenum internalFormat) {
    if (internalFormat == mInternalFormat) {
        return;
    }
    mInternalFormat = internalFormat;
    mFormat = 0;
    mType = 0;
    mPixelSize = kUnknownPixelSize;
    DeleteGLTexture();
    GetFormat();
    GetDataType();
    GetPixelSizeInByte();
}

GLenum OrvelTexture::GetFormat() {
    if (mFormat == 0) {
        mFormat = PixelFormatOf(mInternalFormat);
    }
    return mFormat;
}

GLenum OrvelTexture::GetDataType() {
    if (mType == 0) {
        mType = PixelTypeOf(mInternalFormat);
    }
    return mType;
}

uint32_t OrvelTexture::GetPixelSizeInByte() {
    if (mPixelSize == kUnknownPixelSize) {
        mPixelSize = PixelSizeOf(mInternalFormat);
    }
    return mPixelSize;
}

void OrvelTexture2D::Storage2D() { gl.glTexStorage2D(mTarget, mMipLevels, mInternalFormat, mWidth, mHeight); }

void OrvelTexture2D::SubImage2D(const void* data, int level, int x, int y, int w, int h) {
    if (w != -1 && h != -1) {
        gl.glTexSubImage2D(mTarget, level, x, y, w, h, GetFormat(), GetDataType(), data);
    } else {
        gl.glTexSubImage2D(mTarget, 0, 0, 0, mWidth, mHeight, GetFormat(), GetDataType(), data);
    }
}

OrvelTexture2D* CreateTexture2D(GLenum internalFormat, int width, int height) {
    auto* texture = new OrvelTexture2D;
    texture->SetInternalFormat(internalFormat);
    texture->SetWidth(width);
    texture->SetHeight(height);
    texture->Bind();
    texture->Storage2D();
    texture->UnBind();
    return texture;
}

} // namespace android::orvel::next
