// The switch: a look at the configuration after a swap, and new render targets when it asks for another size.
#include "legacy/OrvelDRR.h"

#include "base/OrvelClock.h"
#include "base/OrvelLog.h"
#include "next/OrvelNext.h"

#include <cutils/properties.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace android::orvel {

namespace {

/** @return the number in a property, -1 when it is not set */
int propertyNumber(const char* name) {
    char value[PROPERTY_VALUE_MAX] = {};
    property_get(name, value, "-1");
    return std::atoi(value);
}

bool isFilteredLinearly(uint32_t format) {
    return format == GL_RGBA8 || format == GL_R8 || format == GL_R11F_G11F_B10F;
}

} // namespace

void OrvelDRR::onEglSwapBuffersEnd() {
    const OrvelTurn turn(mSwapTurns, OrvelTurn::ASK); // not mTurns: the log may call the game
    if (!turn) {
        return;
    }
    const int64_t now = monotonicNanos();
    mForceRestore = mForceRestore || mRestoreTextureBound;
    mRestoreTextureBound = false;
    const bool throttled = !mForceRestore;
    if (throttled && (now - mLastUpdateTime) / kNanosPerMilli < mUpdateInterval) {
        return;
    }
    mLastUpdateTime = now;
    if (mExistIllegalShader) {
        ORVEL_LOGD_IF(mDebug, "OrvelDRR, onEglSwapBuffersEnd, existIllegalShader");
        return;
    }
    updateDrConfig();
    if (isTargetNew()) {
        switchToTarget();
    }
}

// ---- the target ---------------------------------------------------------------------------------------

void OrvelDRR::updateDrConfig() {
    if (mForceRestore) {
        mTargetWidth = mOriginWidth;
        mTargetHeight = mOriginHeight;
        ORVEL_LOGD_IF(mDebug, "OrvelDRR, updateDrConfig, force restore to origin size: %dx%d", mTargetWidth,
                      mTargetHeight);
    } else {
        readTarget();
        if (mDebug) {
            forceTarget();
        }
    }
    ORVEL_LOGD_IF(mDebug, "OrvelDRR, updateDrConfig: %dx%d", mTargetWidth, mTargetHeight);
}

/** Takes the watched file's line; the target stays as it is when that is no good or for another package. */
void OrvelDRR::readTarget() {
    const auto line = mConfigFile.readLine();
    if (!line) {
        ORVEL_LOGE("OrvelDRR, DR open fail: %s", strerror(errno));
        return;
    }
    const auto request = DrConfigFile::parse(*line);
    if (!request) {
        ORVEL_LOGE("OrvelDRR, DR parse error: %s", strerror(errno));
        return;
    }
    if (!request->package.empty() && mPackageName.find(request->package) == std::string::npos) {
        return;
    }
    if (checkAvailableSize(request->width, request->height)) {
        mTargetWidth = request->width;
        mTargetHeight = request->height;
        ORVEL_LOGD_IF(mDebug, "OrvelDRR, DR: %s : %dx%d", mPackageName.c_str(), mTargetWidth, mTargetHeight);
    } else if (mDebug) {
        ORVEL_LOGE("OrvelDRR, target size not available, %dx%d", request->width, request->height);
    } else {
        ORVEL_LOGE("OrvelDRR, target size not available");
    }
}

/** Developers may ask for any size at all: it is checked against no list. */
void OrvelDRR::forceTarget() {
    const int width = propertyNumber("vendor.orvel.force_dr_target_width");
    const int height = propertyNumber("vendor.orvel.force_dr_target_height");
    if (width != kNoSize && height != kNoSize) {
        ORVEL_LOGD("OrvelDRR, use force_target_resolution: %dx%d", width, height);
        mTargetWidth = width;
        mTargetHeight = height;
    }
}

/** Deliberate: a target that differs in one dimension only is not applied. */
bool OrvelDRR::isTargetNew() const {
    return mTargetWidth != kNoSize && mTargetHeight != kNoSize && mTargetWidth != mPreTargetWidth &&
           mTargetHeight != mPreTargetHeight;
}

// ---- the render targets -------------------------------------------------------------------------------

/**
 * Replaces every recorded texture that is attached somewhere. What it leaves changed in the game's context is
 * deliberate: what is bound has lost its colour; the clear colour, the texture of the active unit (0) and the read
 * framebuffer are ours; the draw framebuffer is the one that the game bound last, for whatever purpose.
 */
void OrvelDRR::switchToTarget() {
    const OrvelTurn turn(mTurns, OrvelTurn::WAIT);
    if (!turn) {
        return;
    }
    std::vector<uint32_t> handled; // a texture may be attached to several framebuffers
    handled.reserve(mTexDetailMap.size());
    ORVEL_LOGD_IF(mDebug, "OrvelDRR, dr: %dx%d", mTargetWidth, mTargetHeight);
    ORVEL_LOGD_IF(mDebug, "OrvelDRR mTargetWidth:%d, mTargetHeight:%d, mPreTargetWidth:%d, mPreTargetHeight:%d",
                  mTargetWidth, mTargetHeight, mPreTargetWidth, mPreTargetHeight);
    next::gl.glClearColor(0, 0, 0, 0);
    next::gl.glClear(GL_COLOR_BUFFER_BIT);
    const GLuint gameFramebuffer = mCurrentFramebuffer;
    for (const auto& [framebuffer, detail] : mFramebufferDetailMap) {
        ORVEL_LOGD_IF(mDebug,
                      "OrvelDRR, traverse mFramebufferDetailMap, framebuffer: %d, color0: %d, color1: %d, color2: %d, "
                      "depthStencil: %d",
                      static_cast<int>(framebuffer), static_cast<int>(detail.color0), static_cast<int>(detail.color1),
                      static_cast<int>(detail.color2), static_cast<int>(detail.depth));
        for (const AttachmentPoint& watched : kAttachmentPoints) {
            const uint32_t tex = detail.*watched.texture;
            if (tex == kNoName) {
                continue;
            }
            const auto recorded = mTexDetailMap.find(tex);
            if (recorded == mTexDetailMap.end()) {
                ORVEL_LOGD_IF(mDebug, "OrvelDRR, check_tex_exist tex: %d isn't in mTexDetailMap -------------",
                              static_cast<int>(tex));
                continue;
            }
            if (std::find(handled.begin(), handled.end(), tex) == handled.end()) {
                genNewTex(tex);
                copyTex(tex, framebuffer, watched.point, watched.mask);
                handled.push_back(tex);
            }
            next::gl.glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
            next::gl.glFramebufferTexture2D(GL_FRAMEBUFFER, watched.point, GL_TEXTURE_2D, recorded->second.newTex, 0);
        }
    }
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, gameFramebuffer);
    mPreTargetWidth = mAppliedWidth = mTargetWidth;
    mPreTargetHeight = mAppliedHeight = mTargetHeight;
}

/** Creates the replacement of a recorded texture. The one before it is not freed: the game may still use it. */
void OrvelDRR::genNewTex(unsigned tex) {
    TextureDetail& detail = mTexDetailMap.at(tex);
    GLuint newTex = 0;
    next::gl.glGenTextures(1, &newTex);
    next::gl.glBindTexture(GL_TEXTURE_2D, newTex);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 0);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
    next::gl.glTexStorage2D(GL_TEXTURE_2D, 1, detail.format, mTargetWidth, mTargetHeight);
    ORVEL_LOGD_IF(mDebug,
                  "OrvelDRR, genNewTex  mTexDetailMap[tex].oldWidth %d, mTexDetailMap[tex].oldHeight %d,"
                  "mTargetWidth%d,mTargetHeight%d",
                  static_cast<int>(detail.oldWidth), static_cast<int>(detail.oldHeight), mTargetWidth, mTargetHeight);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_R, GL_CLAMP_TO_EDGE);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, 1);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_SRGB_DECODE_EXT, GL_DECODE_EXT);
    const GLint filter = isFilteredLinearly(detail.format) ? GL_LINEAR : GL_NEAREST;
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    next::gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    detail.preNewTex = detail.newTex;
    if (mPreTargetWidth != kNoSize && mPreTargetHeight != kNoSize) {
        detail.oldWidth = static_cast<uint32_t>(mPreTargetWidth);
        detail.oldHeight = static_cast<uint32_t>(mPreTargetHeight);
    }
    detail.newTex = newTex;
    mAnyReplaced = true;
    next::gl.glBindTexture(GL_TEXTURE_2D, 0);
    ORVEL_LOGD_IF(mDebug, "OrvelDRR, genNewTex, tex: %d, newTex: %d", static_cast<int>(tex), static_cast<int>(newTex));
}

/** Blits what the texture or its previous replacement holds into the new replacement. */
void OrvelDRR::copyTex(unsigned tex, unsigned, unsigned attachment, unsigned mask) {
    const TextureDetail& detail = mTexDetailMap.at(tex);
    const bool isColour = mask == GL_COLOR_BUFFER_BIT;
    // Deliberate: a depth or stencil point is no read or draw buffer. The driver refuses it, leaves its error and
    // blits depth and stencil all the same.
    const GLenum point = isColour ? GL_COLOR_ATTACHMENT0 : attachment;

    GLuint readFramebuffer = 0;
    next::gl.glGenFramebuffers(1, &readFramebuffer);
    next::gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, readFramebuffer);
    const GLuint source = detail.preNewTex != kNoName ? detail.preNewTex : tex;
    next::gl.glFramebufferTexture2D(GL_READ_FRAMEBUFFER, point, GL_TEXTURE_2D, source, 0);
    next::gl.glReadBuffer(point);

    GLuint drawFramebuffer = 0;
    next::gl.glGenFramebuffers(1, &drawFramebuffer);
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, drawFramebuffer);
    next::gl.glDrawBuffers(1, &point);
    ORVEL_LOGD_IF(mDebug && !isColour, "OrvelDRR, mask is ~ GL_COLOR_BUFFER_BIT");
    next::gl.glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, point, GL_TEXTURE_2D, detail.newTex, 0);

    next::gl.glBlitFramebuffer(0, 0, static_cast<GLint>(detail.oldWidth), static_cast<GLint>(detail.oldHeight), 0, 0,
                               mTargetWidth, mTargetHeight, mask, GL_NEAREST);
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    next::gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
    next::gl.glDeleteFramebuffers(1, &readFramebuffer);
    next::gl.glDeleteFramebuffers(1, &drawFramebuffer);
    ORVEL_LOGD_IF(mDebug,
                  "OrvelDRR, copyTex  1-2 mCurrentTexture %d, tex %d, newTex %d, mCurrentFramebuffer %d, "
                  "mCurrentWidth%d, mCurrentHeight%d,mTargetWidth%d,mTargetHeight%d,mTexDetailMap[tex].oldWidth %d, "
                  "mTexDetailMap[tex].oldHeight %d",
                  static_cast<int>(mCurrentTexture), static_cast<int>(tex), static_cast<int>(detail.newTex),
                  static_cast<int>(mCurrentFramebuffer), int{mAppliedWidth}, int{mAppliedHeight}, mTargetWidth,
                  mTargetHeight, static_cast<int>(detail.oldWidth), static_cast<int>(detail.oldHeight));
}

} // namespace android::orvel
