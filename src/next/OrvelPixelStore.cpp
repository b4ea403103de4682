#include "next/OrvelPixelStore.h"

#include "next/OrvelNext.h"

namespace android::orvel::next {

namespace {

struct Parameter {
    GLenum name;
    GLint tight;
};

constexpr Parameter kTight[] = {
    {GL_UNPACK_ALIGNMENT, 1}, {GL_UNPACK_ROW_LENGTH, 0}, {GL_UNPACK_SKIP_ROWS, 0}, {GL_UNPACK_SKIP_PIXELS, 0}};

} // namespace

OrvelPixelStoreScope::OrvelPixelStoreScope(Source source) {
    for (int i = 0; i < kParameters; ++i) {
        mGameValues[i] = kTight[i].tight; // should the query fail
        gl.glGetIntegerv(kTight[i].name, &mGameValues[i]);
        if (mGameValues[i] != kTight[i].tight) {
            gl.glPixelStorei(kTight[i].name, kTight[i].tight);
        }
    }
    if (source == FROM_MEMORY) {
        gl.glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &mBuffer);
        if (mBuffer != 0) {
            gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        }
    }
}

OrvelPixelStoreScope::~OrvelPixelStoreScope() {
    if (mBuffer != 0) {
        gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(mBuffer));
    }
    for (int i = 0; i < kParameters; ++i) {
        if (mGameValues[i] != kTight[i].tight) {
            gl.glPixelStorei(kTight[i].name, mGameValues[i]);
        }
    }
}

} // namespace android::orvel::next
