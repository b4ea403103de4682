// What the game does is recorded here, and what it passes rewritten. The switch itself: OrvelDRRSwitch.cpp.
#include "legacy/OrvelDRR.h"

#include "base/OrvelLog.h"
#include "base/ScreenSizeUniform.h"
#include "next/OrvelNext.h"

#include <cstring>
#include <utility>

namespace android {

namespace orvel {

namespace {

constexpr int32_t kLeastInterval = 10; // milliseconds

} // namespace

constinit const std::array<OrvelDRR::AttachmentPoint, 5> OrvelDRR::kAttachmentPoints = {{
    {GL_COLOR_ATTACHMENT0, GL_COLOR_BUFFER_BIT, &FramebufferDetail::color0},
    {GL_COLOR_ATTACHMENT1, GL_COLOR_BUFFER_BIT, &FramebufferDetail::color1},
    {GL_COLOR_ATTACHMENT2, GL_COLOR_BUFFER_BIT, &FramebufferDetail::color2},
    {GL_DEPTH_ATTACHMENT, GL_DEPTH_BUFFER_BIT, &FramebufferDetail::depth},
    {GL_STENCIL_ATTACHMENT, GL_STENCIL_BUFFER_BIT, &FramebufferDetail::stencil},
}};

OrvelDRR::OrvelDRR(bool enable, bool debug, std::string packageName, int updateIntervalMs,
                   std::vector<TEX_SIZE> baseSizes, std::vector<TEX_SIZE> availableSizes,
                   std::vector<TEX_SIZE> illegalSizes)
    : mEnable(enable),
      mDebug(debug),
      mUpdateInterval(std::max(updateIntervalMs, kLeastInterval)),
      mPackageName(std::move(packageName)),
      mBaseSizes(std::move(baseSizes)),
      mAvailableSizes(std::move(availableSizes)),
      mIllegalSizes(std::move(illegalSizes)),
      mRebindsOnActiveTexture(mPackageName == "com.miHoYo.hkrpg"),
      mConfigFile("/data/system/mcd/dr") {}

// ---- recording ----------------------------------------------------------------------------------------

// Loading threads make, attach and delete much that is not recorded: that must not keep draws from looking up.
template <typename Map>
bool OrvelDRR::knowsNone(const Map& map, int n, const unsigned* ids) const noexcept {
    const OrvelLook look(mTurns);
    return look && (!ids || n < 1 || std::none_of(ids, ids + n, [&map](unsigned id) { return map.contains(id); }));
}

void OrvelDRR::updateTexDetailMap(unsigned format, int width, int height) {
    if (!contains(mBaseSizes, width, height)) {
        return;
    }
    const OrvelTurn turn(mTurns, OrvelTurn::WAIT);
    if (!turn) {
        return;
    }
    ORVEL_LOGD_IF(mDebug, "OrvelDRR, record tex detail, tex: %d", static_cast<int>(mCurrentTexture));
    TextureDetail detail; // of a texture that was recorded before, too: it starts without a replacement again
    detail.format = format;
    detail.oldWidth = static_cast<uint32_t>(width);
    detail.oldHeight = static_cast<uint32_t>(height);
    mTexDetailMap[mCurrentTexture] = detail;
}

void OrvelDRR::updateFramebufferDetailMap(unsigned attachment, unsigned& texture) {
    if (knowsNone(mTexDetailMap, 1, &texture)) {
        return;
    }
    const OrvelTurn turn(mTurns, OrvelTurn::WAIT);
    if (!turn) {
        return;
    }
    const auto recorded = mTexDetailMap.find(texture);
    if (recorded == mTexDetailMap.end()) {
        return; // deliberately also for a detaching 0: the next switch attaches the replacement again
    }
    ORVEL_LOGD_IF(mDebug, "OrvelDRR, record framebuffer detail, framebuffer: %d, attach-texture: %d",
                  static_cast<int>(mCurrentFramebuffer), static_cast<int>(texture));
    // Deliberate: an attachment that is not watched makes an entry, too.
    FramebufferDetail& detail = mFramebufferDetailMap[mCurrentFramebuffer];
    for (const AttachmentPoint& watched : kAttachmentPoints) {
        if (watched.point == attachment) {
            detail.*watched.texture = texture;
        }
    }
    if (recorded->second.newTex != kNoName) {
        texture = recorded->second.newTex;
    }
}

void OrvelDRR::deleteTextures(int n, const unsigned* ids) noexcept {
    if (knowsNone(mTexDetailMap, n, ids)) {
        return;
    }
    const OrvelTurn turn(mTurns, OrvelTurn::WAIT);
    if (!turn) {
        return;
    }
    for (int i = 0; ids && i < n; ++i) {
        const auto deleted = mTexDetailMap.find(ids[i]);
        if (deleted == mTexDetailMap.end()) {
            continue;
        }
        ORVEL_LOGD_IF(mDebug, "OrvelDRR, deleteTextures, tex: %d in mTexDetailMap, erase it", static_cast<int>(ids[i]));
        // Deliberate: the deleted texture's own entry is among those asked, so a replacement is kept as a rule.
        const GLuint newTex = deleted->second.newTex;
        const bool used = std::any_of(mTexDetailMap.begin(), mTexDetailMap.end(),
                                      [newTex](const auto& entry) { return entry.second.newTex == newTex; });
        if (!used) {
            ORVEL_LOGD_IF(mDebug, "OrvelDRR, deleteTextures, newTex: %d don't use anymore, delete it",
                          static_cast<int>(newTex));
            next::gl.glDeleteTextures(1, &newTex);
        }
        mTexDetailMap.erase(deleted);
    }
}

void OrvelDRR::deleteFramebuffers(int n, const unsigned* ids) noexcept {
    if (knowsNone(mFramebufferDetailMap, n, ids)) {
        return;
    }
    const OrvelTurn turn(mTurns, OrvelTurn::WAIT);
    if (!turn) {
        return;
    }
    for (int i = 0; ids && i < n; ++i) {
        const auto deleted = mFramebufferDetailMap.find(ids[i]);
        if (deleted == mFramebufferDetailMap.end()) {
            continue;
        }
        ORVEL_LOGD_IF(mDebug, "OrvelDRR, deleteFramebuffers, fb: %d in mFramebufferDetailMap, erase it",
                      static_cast<int>(ids[i]));
        // Deliberate: while one of its textures is recorded, the entry outlives the framebuffer.
        const FramebufferDetail& detail = deleted->second;
        const bool used =
            std::any_of(kAttachmentPoints.begin(), kAttachmentPoints.end(), [&](const AttachmentPoint& watched) {
                return mTexDetailMap.find(detail.*watched.texture) != mTexDetailMap.end();
            });
        if (!used) {
            mFramebufferDetailMap.erase(deleted);
        }
    }
}

void OrvelDRR::markLabelObject(unsigned object, const char* label) noexcept {
    if (std::strcmp(label, mIllegalProgramLabel) == 0) {
        mIllegalProgram = object;
    } else if (std::strcmp(label, mRestoreTextureLabel) == 0) {
        mRestoreTexture = object;
    }
}

void OrvelDRR::markCurrentProgram(unsigned program) noexcept {
    mCurrentProgram = program;
    if (!mExistIllegalShader && mIllegalProgram != kNoName && mIllegalProgram == program) {
        mExistIllegalShader = true;
        ORVEL_LOGD_IF(mDebug, "OrvelDRR, markCurrentProgram, IllegalScene");
    }
}

// ---- rewriting ----------------------------------------------------------------------------------------

void OrvelDRR::modifyShaderUniform4fv_1(int, float* v) noexcept {
    const float old[] = {v[0], v[1], v[2], v[3]};
    if (rewriteScreenSizeUniform(v, [this](int& width, int& height) { modifySizeParams(width, height); })) {
        ORVEL_LOGD_IF(mDebug, "OrvelDRR, modifyShaderUniform4fv_1, su: [%f, %f, %f, %f] -> [%f, %f, %f, %f]",
                      double{old[0]}, double{old[1]}, double{old[2]}, double{old[3]}, double{v[0]}, double{v[1]},
                      double{v[2]}, double{v[3]});
    }
}

uint32_t OrvelDRR::replacementOf(uint32_t texture) const noexcept {
    const auto recorded = mTexDetailMap.find(texture);
    return recorded == mTexDetailMap.end() ? kNoName : recorded->second.newTex;
}

/** @return whether the texture has a replacement or is one, so far as can be told now */
bool OrvelDRR::mayNeedRebinding(uint32_t texture) const noexcept {
    const OrvelLook look(mTurns);
    return look && (mTexDetailMap.contains(texture) || mNewTexOriginMap.contains(texture));
}

void OrvelDRR::activeTexture(unsigned) {
    if (!mRebindsOnActiveTexture) {
        return;
    }
    GLint binding = -1;
    next::gl.glGetIntegerv(GL_TEXTURE_BINDING_2D, &binding);
    const auto bound = static_cast<GLuint>(binding);
    if (!mAnyReplaced || !mayNeedRebinding(bound)) {
        return;
    }
    const OrvelTurn turn(mTurns, OrvelTurn::ASK);
    if (!turn) {
        return;
    }
    const auto isName = [](GLuint texture) { return static_cast<GLint>(texture) >= 1; };
    if (const GLuint newTex = replacementOf(bound); isName(newTex)) {
        mNewTexOriginMap[newTex] = bound;
        rebindTexture(bound, newTex);
        return;
    }
    const auto replacement = mNewTexOriginMap.find(bound);
    if (replacement == mNewTexOriginMap.end()) {
        return;
    }
    const GLuint origin = replacement->second;
    if (const GLuint newer = replacementOf(origin); isName(newer) && newer != bound) {
        mNewTexOriginMap.erase(replacement);
        mNewTexOriginMap[newer] = origin;
        rebindTexture(bound, newer);
    }
}

/** Past the hooks, so that the texture bound last stays the one the game named. */
void OrvelDRR::rebindTexture(unsigned from, unsigned to) const {
    next::gl.glBindTexture(GL_TEXTURE_2D, to);
    ORVEL_LOGD_IF(mDebug, "OrvelDRR activeTexture, tex: %d -> %d", static_cast<int>(from), static_cast<int>(to));
}

} // namespace orvel

void logDRRFailure(const char* function) noexcept { ORVEL_LOGE("OrvelDRR, %s: out of memory", function); }

void drrUpdateTexDetailMap(unsigned format, int w, int h) noexcept {
    orvel::OrvelDRR* const drr = mOrvelDRR;
    if (!isOrvelDRREnable() || !drr || !drr->isEnabled()) {
        return;
    }
    if (drr->checkIllegalSize(w, h)) {
        ORVEL_LOGD("OrvelDRR, illegalSize: %dx%d, disable drr", w, h);
        mEnableDynamicResolution = false; // for good; nothing is undone
        return;
    }
    try {
        drr->updateTexDetailMap(format, w, h);
    } catch (...) {
        logDRRFailure("drrUpdateTexDetailMap");
    }
}

} // namespace android
