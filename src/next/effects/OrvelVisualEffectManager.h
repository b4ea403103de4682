// The colour filters of one render context: loads them, follows the player's choice, draws the chosen one.
#pragma once

#include <EGL/egldefs.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace android::orvel::next {

class OrvelLutEffectInstance;
class OrvelStateTracker;
class OrvelTexture2D;
class OrvelVisualEffect;
class OrvelVisualEffectInstance;

/** Key of the cache of look-up textures. */
struct PNGImageInfo {
    uint32_t width;
    uint32_t height;
    uint32_t internalFormat;
    bool operator==(const PNGImageInfo&) const = default;
};

struct PNGImageHash {
    size_t operator()(const PNGImageInfo& image) const;
};

/**
 * Made by a processor that has a filter module, on its context; used on that context's thread only. Effects, their
 * instances and filter types are numbered: an instance is what a filter type draws, with one of the three effects.
 */
class OrvelVisualEffectManager {
public:
    /** Knows from the configuration which filter types this process's game wants. Makes no GL call. */
    OrvelVisualEffectManager();
    /** Deletes what it made, if the context that it was made on is current; objects of another one are left alone. */
    ~OrvelVisualEffectManager();
    OrvelVisualEffectManager(const OrvelVisualEffectManager&) = delete;
    OrvelVisualEffectManager& operator=(const OrvelVisualEffectManager&) = delete;

    /**
     * Once per frame: looks at the player's choice now and then, and makes at most one object of those still to be
     * loaded, so that no frame pays for many.
     * @throw std::bad_function_call for an effect or a filter type that this process's game does not have
     */
    void FrameEnd();

    /** Loading takes time: a game enables it when a pause does not show. */
    void EnableLoadResource() { mLoadingEnabled = true; }
    bool IsLoadResourceEnabled() const { return mLoadingEnabled; }

    /** @return whether there is something to draw: all is loaded, and a filter is chosen that can be drawn */
    bool EnableRender() const { return mFlags == 0; }
    /**
     * Draws the chosen filter over the framebuffer that is bound. Blending, culling, depth, stencil, masks and viewport
     * are used as they are.
     * @param tracker restores, after the call, what it recorded
     */
    void Render(OrvelStateTracker& tracker);

    /** Takes up the instance of the chosen type, with everything to be sent, if there is one that can be drawn. */
    void OnEffectInstanceTypeChanged();
    /** Tells the current instance what the player changed about it. */
    void CheckUpdateUniformParam();

    /** @return the texture for images of that size and format, not the caller's; null if it cannot be made */
    OrvelTexture2D* GetPNGTexture(int width, int height, GLenum internalFormat);
    /** @return the driver's, asked once */
    int GetMaxTextureUnits();

private:
    enum EffectId : uint32_t { EFFECT_NONE = 0, EFFECT_GREEN = 1, EFFECT_BROWN = 2, EFFECT_LUT = 3, EFFECT_COUNT };
    enum Flag : uint32_t { FLAG_LOADING = 1, FLAG_NO_INSTANCE = 2 }; // reasons not to draw
    static constexpr uint32_t kFilterTypes = 9;                      // 0 is no filter

    struct FilterType { // which effect draws it, and with which image in each game
        EffectId effect;
        const char* pubgImage;
        const char* sgameImage;
    };
    static const std::array<FilterType, kFilterTypes> kTypes;
    static const std::array<const char*, EFFECT_COUNT> kBinaries; // files of the effects' program binaries
    static constexpr std::array<uint32_t, 3> kEffectLoadList{EFFECT_LUT, EFFECT_BROWN, EFFECT_GREEN};

    void InitFactories();
    void FollowFilterType();
    void LoadNext();
    void LoadEffect(size_t position);
    void LoadInstance(uint32_t type);

    const uint32_t mApplicationType;
    bool mLoadingEnabled = false;
    uint32_t mFlags = FLAG_LOADING | FLAG_NO_INSTANCE;
    uint32_t mCheckPeriod = 10; // frames between two looks at the chosen type
    uint32_t mFrameCount = 0;
    uint32_t mCurrentType = 0;

    std::vector<bool> mEffectBinary;         // by position in kEffectLoadList; none means no
    std::vector<uint32_t> mInstanceLoadList; // filter types
    size_t mEffectLoadIndex = 0;
    size_t mInstanceLoadIndex = 0;
    std::array<std::function<std::unique_ptr<OrvelVisualEffect>(bool binary)>, EFFECT_COUNT> mEffectFactory;
    std::array<std::function<std::unique_ptr<OrvelVisualEffectInstance>(OrvelVisualEffect*)>, kFilterTypes>
        mInstanceFactory;

    bool mVaoPending = true;
    GLuint mVao = 0;                      // without any array: the triangle is made in the shader
    EGLContext mContext = EGL_NO_CONTEXT; // of all the GL objects here
    std::unordered_map<PNGImageInfo, std::unique_ptr<OrvelTexture2D>, PNGImageHash> mPngCache;
    std::array<std::unique_ptr<OrvelVisualEffect>, EFFECT_COUNT> mEffects;
    std::array<std::unique_ptr<OrvelVisualEffectInstance>, kFilterTypes> mInstances;
    OrvelVisualEffectInstance* mCurrent = nullptr;
    OrvelLutEffectInstance* mCurrentLut = nullptr; // the same, when it has an image
    int32_t mMaxTextureUnits = 0;
};

} // namespace android::orvel::next
