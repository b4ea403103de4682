#include "legacy/FrameCapture.h"

#include "base/OrvelClock.h"
#include "base/OrvelGuard.h"
#include "base/OrvelLog.h"
#include "legacy/GlObjects.h"
#include "legacy/OrvelDFI.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"
#include "settings/orvel_modify_params.h"

#include <GLES2/gl2ext.h>

namespace android {

namespace next = orvel::next;

int64_t mDFITimestamp = 0;
uint32_t mDFITempTexture = 0;
uint32_t mDFITempFramebuffer = 0;
int32_t mSurfaceWidth = 0;
int32_t mSurfaceHeight = 0;
bool mDFICopySuccess = false;

namespace {

constexpr int32_t kLeastFps = 36; // a slower game gets no repeated frames
constexpr int32_t kNoInterval = -1;

/** What the game has bound, asked of the driver; -1 where the context does not know the question. */
GLuint boundTo(GLenum binding) {
    GLint name = -1;
    next::gl.glGetIntegerv(binding, &name);
    return static_cast<GLuint>(name);
}

constexpr orvel::TextureParameter kCopyParameters[] = {
    {GL_TEXTURE_BASE_LEVEL, 0},
    {GL_TEXTURE_MAX_LEVEL, 0},
    {GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE},
    {GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE},
    {GL_TEXTURE_WRAP_R, GL_CLAMP_TO_EDGE},
    {GL_TEXTURE_MIN_FILTER, GL_LINEAR},
    {GL_TEXTURE_MAG_FILTER, GL_LINEAR},
    {GL_TEXTURE_SRGB_DECODE_EXT, GL_DECODE_EXT},
};
constexpr orvel::TextureParameter kScreenshotParameters[] = {
    {GL_TEXTURE_MIN_FILTER, GL_LINEAR},
    {GL_TEXTURE_MAG_FILTER, GL_LINEAR},
    {GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE},
    {GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE},
};

// ---- frame repetition ---------------------------------------------------------------------------------

/** Where the interval follows the measured rate, measures and sets it; else the one set at start-up stays. */
void updateInterval() {
    const auto* prefs = orvel::OrvelSettings::getInstance().mPrefs;
    if (!prefs || !prefs->mDynamicDFIEnabled) {
        return;
    }
    OrvelDFI& dfi = OrvelDFI::getInstance();
    dfi.updateSourceFps();
    if (dfi.getSourceFps() >= kLeastFps) {
        dfi.doDFIInterval();
        mDFIInterval = dfi.getDFIInterval();
    } else {
        mDFIInterval = kNoInterval;
    }
}

void recreateCopy(int32_t width, int32_t height) {
    const GLuint gameTexture = boundTo(GL_TEXTURE_BINDING_2D);
    if (mDFITempTexture) {
        next::gl.glDeleteTextures(1, &mDFITempTexture);
    }
    mSurfaceWidth = width;
    mSurfaceHeight = height;
    mDFITempTexture = orvel::makeTexture(width, height, kCopyParameters);
    next::gl.glBindTexture(GL_TEXTURE_2D, gameTexture); // the next frame may go on with it
}

void recreateFramebuffer() {
    if (mDFITempFramebuffer) {
        next::gl.glDeleteFramebuffers(1, &mDFITempFramebuffer);
    }
    mDFITempFramebuffer = orvel::makeDrawFramebuffer(mDFITempTexture);
}

void copyFrame() {
    next::gl.glBlitFramebuffer(0, 0, mSurfaceWidth, mSurfaceHeight, 0, 0, mSurfaceWidth, mSurfaceHeight,
                               GL_COLOR_BUFFER_BIT, GL_NEAREST);
}

} // namespace

void saveFrame(EGLDisplay display, EGLSurface surface) {
    orvel::guarded("saveFrame", updateInterval); // else the last interval stays
    if (mDFIInterval < 1) {
        return;
    }
    const int64_t now = orvel::monotonicNanos();
    if ((now - mDFITimestamp) / orvel::kNanosPerMilli < mDFIInterval) {
        return;
    }
    mDFITimestamp = now;
    EGLint width = 0;
    EGLint height = 0;
    next::platform.eglQuerySurface(display, surface, EGL_WIDTH, &width);
    next::platform.eglQuerySurface(display, surface, EGL_HEIGHT, &height);
    if (width < 1 || height < 1) {
        return; // the driver does not know the surface: nothing can be kept, and the swap will say so
    }
    const bool hasCopy = mDFITempTexture && width == mSurfaceWidth && height == mSurfaceHeight;
    if (!hasCopy) {
        recreateCopy(width, height);
    }
    if (!hasCopy || !mDFITempFramebuffer) {
        recreateFramebuffer();
    }
    next::gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, mDFITempFramebuffer);
    copyFrame();
    mDFICopySuccess = true;
}

EGLBoolean swapFrame(EGLDisplay display, EGLSurface surface, EGLBoolean result) {
    if (!mDFICopySuccess) {
        return result;
    }
    mDFICopySuccess = false;
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    next::gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, mDFITempFramebuffer);
    copyFrame();
    ORVEL_LOGD_IF(orveldebug, "DFI");
    return next::platform.eglSwapBuffers(display, surface); // past the hook, which would keep this frame, too
}

// ---- screenshots --------------------------------------------------------------------------------------

int processGameCapture(int x, int y, int width, int height, unsigned format, unsigned type, void* pixels) {
    const auto& wanted = mGameSCSize;
    const int raisedWidth = mTargetTexWidthYuanshen;
    const int raisedHeight = mTargetTexHeightYuanshen;
    const bool isScreenshot =
        x == 0 && y == 0 && wanted.width >= 1 && wanted.height >= 1 && width == wanted.width && height == wanted.height;
    if (!isScreenshot || raisedWidth <= width || raisedHeight <= height) {
        return 0;
    }
    ORVEL_LOGD("processGameCapture, start: %dx%d, size: %dx%d->%dx%d, format: %x, type: %x, ", x, y, width, height,
               raisedWidth, raisedHeight, format, type);
    const GLuint drawFramebuffer = boundTo(GL_DRAW_FRAMEBUFFER_BINDING);
    const GLuint readFramebuffer = boundTo(GL_READ_FRAMEBUFFER_BINDING);
    const GLuint gameTexture = boundTo(GL_TEXTURE_BINDING_2D);

    const GLuint texture = orvel::makeTexture(width, height, kScreenshotParameters);
    const GLuint framebuffer = orvel::makeDrawFramebuffer(texture);
    // Deliberate: the raised size enters squared, so more is asked for than there is. Where the game's framebuffer
    // has nothing, the copy keeps what it held.
    const auto sourceWidth = static_cast<GLint>(int64_t{raisedWidth} * raisedWidth / width);
    const auto sourceHeight = static_cast<GLint>(int64_t{raisedHeight} * raisedHeight / height);
    next::gl.glBlitFramebuffer(0, 0, sourceWidth, sourceHeight, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_LINEAR);

    next::gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
    next::gl.glReadPixels(0, 0, width, height, format, type, pixels);
    next::gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, readFramebuffer);
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, drawFramebuffer);
    next::gl.glBindTexture(GL_TEXTURE_2D, gameTexture);
    next::gl.glDeleteTextures(1, &texture);
    next::gl.glDeleteFramebuffers(1, &framebuffer);
    return 1;
}

} // namespace android
