// Dynamic resolution: the game's render targets shrink and grow while it runs. Textures that the game allocates at a
// base size are recorded with the framebuffers they are attached to. When the watched file names another size, each
// gets a replacement of that size with its contents, and from then on the replacement stands in wherever the game
// binds or attaches its own texture, while sizes that the game passes are rewritten to match.
#pragma once

#include "base/OrvelTurn.h"
#include "base/Relaxed.h"
#include "legacy/DrConfigFile.h"
#include "settings/OrvelTexSize.h"
#include "settings/orvel_modify_params.h"

#include <GLES3/gl32.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace android {

namespace orvel {

/**
 * Records render targets and replaces them. One instance, made for a game that draws in a single context. Threads that
 * load into that context's share group come through the same hooks: each has its own "bound last", and they take turns.
 */
class OrvelDRR {
public:
    using TEX_SIZE = com::velmor::ravelo::TEX_SIZE;

    /** @param updateIntervalMs least time between two looks at the configuration; below 10 counts as 10 */
    OrvelDRR(bool enable, bool debug, std::string packageName, int updateIntervalMs, std::vector<TEX_SIZE> baseSizes,
             std::vector<TEX_SIZE> availableSizes, std::vector<TEX_SIZE> illegalSizes);

    bool isEnabled() const { return mEnable; }
    bool checkAvailableSize(int width, int height) const { return contains(mAvailableSizes, width, height); }
    /** @return whether the size is one that switches the feature off for good */
    bool checkIllegalSize(int width, int height) const { return contains(mIllegalSizes, width, height); }

    /** Turns every base size into the applied one, and notes it as the size to restore. */
    void modifySizeParams(int& width, int& height) noexcept {
        if (contains(mBaseSizes, width, height)) {
            mOriginWidth = width;
            mOriginHeight = height;
            applySize(width, height);
        }
    }
    /** Turns every available size into the applied one. */
    void modifyShaderSizeParams(int& width, int& height) noexcept {
        if (checkAvailableSize(width, height)) {
            applySize(width, height);
        }
    }
    /**
     * Rewrites a screen-size uniform: [w, h, 1 + 1/w, 1 + 1/h] or [1/w, 1/h, w, h].
     * @param v four floats
     */
    void modifyShaderUniform4fv_1(int location, float* v) noexcept;

    /** Records the texture bound last, when it is being allocated at a base size. */
    void updateTexDetailMap(unsigned format, int width, int height);
    /** Records that a recorded texture is attached to the framebuffer bound last, and puts its replacement in. */
    void updateFramebufferDetailMap(unsigned attachment, unsigned& texture);
    /** Spelt so; replaces the name of a recorded texture by that of its replacement. */
    void modifyBindedTexture(unsigned& texture) const noexcept {
        if (!mAnyReplaced) {
            return;
        }
        const OrvelLook look(mTurns);
        if (!look) {
            return;
        }
        const auto recorded = mTexDetailMap.find(texture);
        if (recorded != mTexDetailMap.end() && recorded->second.newTex != kNoName) {
            texture = recorded->second.newTex;
        }
    }
    void deleteTextures(int n, const unsigned* ids) noexcept;
    void deleteFramebuffers(int n, const unsigned* ids) noexcept;

    void markCurrentTexture(unsigned, unsigned texture) noexcept {
        mCurrentTexture = texture;
        if (texture == mRestoreTexture) {
            mRestoreTextureBound = true;
        }
    }
    void markCurrentFramebuffer(unsigned target, unsigned framebuffer) noexcept {
        mCurrentFramebufferTarget = target;
        mCurrentFramebuffer = framebuffer;
    }
    void markCurrentProgram(unsigned program) noexcept;
    void markLabelObject(unsigned object, const char* label) noexcept;
    /** Hkrpg only: binds the latest replacement in place of what is bound on the unit that became active. */
    void activeTexture(unsigned unit);

    /** Looks at the configuration, not more often than the interval allows, and switches when it asks for that. */
    void onEglSwapBuffersEnd();

private:
    static constexpr uint32_t kNoName = ~0u;
    static constexpr int32_t kNoSize = -1;

    struct TextureDetail {
        uint32_t format = kNoName;    // internal format
        uint32_t newTex = kNoName;    // the replacement
        uint32_t preNewTex = kNoName; // the one before it
        uint32_t oldWidth = kNoName;  // size of what the next switch copies from: the base size, later that of the
        uint32_t oldHeight = kNoName; // previous replacement
    };
    struct FramebufferDetail { // names of the game's textures
        uint32_t color0 = kNoName;
        uint32_t color1 = kNoName;
        uint32_t color2 = kNoName;
        uint32_t depth = kNoName;
        uint32_t stencil = kNoName;
    };
    /** One of the places of a framebuffer that are watched. */
    struct AttachmentPoint {
        unsigned point;
        unsigned mask; // the buffer that is copied
        uint32_t FramebufferDetail::*texture;
    };
    static const std::array<AttachmentPoint, 5> kAttachmentPoints; // in the order in which they are walked

    static bool contains(const std::vector<TEX_SIZE>& sizes, int width, int height) noexcept {
        for (const TEX_SIZE& size : sizes) { // plain: std::find is unrolled for lists longer than ours ever are
            if (size.width == width && size.height == height) {
                return true;
            }
        }
        return false;
    }
    void applySize(int& width, int& height) const noexcept {
        const int32_t appliedWidth = mAppliedWidth;
        const int32_t appliedHeight = mAppliedHeight;
        if (appliedWidth != kNoSize && appliedHeight != kNoSize) {
            width = appliedWidth;
            height = appliedHeight;
        }
    }
    /** @return whether none of the names is in the map, which nobody is changing */
    template <typename Map>
    bool knowsNone(const Map& map, int n, const unsigned* ids) const noexcept;
    uint32_t replacementOf(uint32_t texture) const noexcept;
    bool mayNeedRebinding(uint32_t texture) const noexcept;
    void rebindTexture(unsigned from, unsigned to) const;

    void updateDrConfig();
    void readTarget();
    void forceTarget();
    bool isTargetNew() const;
    void switchToTarget();
    void genNewTex(unsigned tex);
    void copyTex(unsigned tex, unsigned framebuffer, unsigned attachment, unsigned mask);

    const bool mEnable;
    const bool mDebug;
    bool mForceRestore = false;    // for good
    const int32_t mUpdateInterval; // milliseconds
    const std::string mPackageName;
    int64_t mLastUpdateTime = 0; // nanoseconds of the monotonic clock
    OrvelTurns mSwapTurns;       // guards the target, the time and the file
    mutable OrvelTurns mTurns;   // guards the maps
    std::map<uint32_t, TextureDetail> mTexDetailMap;
    std::map<uint32_t, FramebufferDetail> mFramebufferDetailMap;
    std::map<uint32_t, uint32_t> mNewTexOriginMap; // replacement to the game's texture; kept for Hkrpg only
    Relaxed<bool> mAnyReplaced = false;            // for good, so that binds before the first switch look nothing up
    static inline constinit thread_local uint32_t mCurrentTexture = 0; // the game's own name
    static inline constinit thread_local uint32_t mCurrentFramebufferTarget = GL_FRAMEBUFFER;
    static inline constinit thread_local uint32_t mCurrentFramebuffer = 0;
    Relaxed<int32_t> mAppliedWidth = kNoSize; // what base sizes are rewritten to
    Relaxed<int32_t> mAppliedHeight = kNoSize;
    int32_t mTargetWidth = kNoSize; // what the configuration asked for last
    int32_t mTargetHeight = kNoSize;
    int32_t mPreTargetWidth = kNoSize; // the target of the last switch
    int32_t mPreTargetHeight = kNoSize;
    Relaxed<int32_t> mOriginWidth = kNoSize; // the last base size that the game passed
    Relaxed<int32_t> mOriginHeight = kNoSize;
    static inline constinit thread_local uint32_t mCurrentProgram = kNoName;
    const std::vector<TEX_SIZE> mBaseSizes;
    const std::vector<TEX_SIZE> mAvailableSizes;
    const std::vector<TEX_SIZE> mIllegalSizes;
    Relaxed<bool> mExistIllegalShader = false; // for good: from here on no switch
    const char* const mIllegalProgramLabel = "Dynamic Sky/Cube Ground Cloud";
    Relaxed<uint32_t> mIllegalProgram = kNoName;
    const char* const mRestoreTextureLabel = "CameraDesc";
    Relaxed<uint32_t> mRestoreTexture = kNoName;
    Relaxed<bool> mRestoreTextureBound = false; // since the last swap
    const bool mRebindsOnActiveTexture;
    DrConfigFile mConfigFile;
};

} // namespace orvel

/** Asked afresh by every hook: a game that shows an illegal size switches the feature off for good. */
inline bool isOrvelDRREnable() { return mEnableDynamicResolution; }

/** Says that memory ran out; the hook goes on with what the game passed. Call it from a catch. */
void logDRRFailure(const char* function) noexcept;

// What the hooks call; each forwards to the member of the same stem when the instance is usable, and nothing is thrown
// into the game. The answer is isOrvelDRREnable()'s, so that a hook with another way to go needs to ask only once.
#define ORVEL_FORWARD_TO_DRR(name, member, params, args)                                                               \
    inline bool name params noexcept {                                                                                 \
        if (!isOrvelDRREnable()) {                                                                                     \
            return false;                                                                                              \
        }                                                                                                              \
        if (mOrvelDRR && mOrvelDRR->isEnabled()) {                                                                     \
            try {                                                                                                      \
                mOrvelDRR->member args;                                                                                \
            } catch (...) {                                                                                            \
                logDRRFailure(#name);                                                                                  \
            }                                                                                                          \
        }                                                                                                              \
        return true;                                                                                                   \
    }
ORVEL_FORWARD_TO_DRR(drrModifySizeParams, modifySizeParams, (int& w, int& h), (w, h))
ORVEL_FORWARD_TO_DRR(drrMarkCurrentFramebuffer, markCurrentFramebuffer, (unsigned target, unsigned fb), (target, fb))
ORVEL_FORWARD_TO_DRR(drrUpdateFramebufferDetailMap, updateFramebufferDetailMap, (unsigned attachment, unsigned& tex),
                     (attachment, tex))
ORVEL_FORWARD_TO_DRR(drrModifyBindedTexture, modifyBindedTexture, (unsigned& tex), (tex))
ORVEL_FORWARD_TO_DRR(drrMarkCurrentTexture, markCurrentTexture, (unsigned target, unsigned tex), (target, tex))
ORVEL_FORWARD_TO_DRR(drrDeleteTextures, deleteTextures, (int n, const unsigned* ids), (n, ids))
ORVEL_FORWARD_TO_DRR(drrDeleteFramebuffers, deleteFramebuffers, (int n, const unsigned* ids), (n, ids))
ORVEL_FORWARD_TO_DRR(drrOnEglSwapBuffersEnd, onEglSwapBuffersEnd, (), ())
ORVEL_FORWARD_TO_DRR(drrModifyShaderUniform4fv_1, modifyShaderUniform4fv_1, (int location, float* v), (location, v))
ORVEL_FORWARD_TO_DRR(drrMarkCurrentProgram, markCurrentProgram, (unsigned program), (program))
ORVEL_FORWARD_TO_DRR(drrActiveTexture, activeTexture, (unsigned unit), (unit))
ORVEL_FORWARD_TO_DRR(drrMarkLabelObject, markLabelObject, (unsigned object, const char* label), (object, label))
#undef ORVEL_FORWARD_TO_DRR

/** Records a render target that is being allocated, unless its size is an illegal one. */
void drrUpdateTexDetailMap(unsigned format, int w, int h) noexcept;

} // namespace android
