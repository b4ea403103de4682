// A filter type that looks colours up in an image of its own.
#pragma once

#include "next/OrvelPixelBuffer.h"
#include "next/effects/OrvelVisualEffectInstance.h"

#include <array>
#include <memory>

namespace android::orvel::next {

class OrvelLutEffect;

class OrvelLutEffectInstance : public OrvelVisualEffectInstance {
public:
    class IResource;
    class PNGResource;

    /** @param effect null makes an instance that is disabled */
    explicit OrvelLutEffectInstance(OrvelLutEffect* effect);

    void Tick(OrvelStateTracker& tracker) override;
    /** Reads the image into the pixel buffer; the next Tick() brings it to the texture. */
    void Init(OrvelVisualEffectManager* manager, const std::string& resource) override;
    OrvelVisualEffect* GetEffect() override;
    void EnableDarkEdge(bool enable) override;
    void Abandon() override;

    /** @param strength percent */
    void SetLutStrength(int strength);
    int32_t GetLutStrength() const { return mStrength; }
    /**
     * After the draw, before the tracker restores: binds again what the game had on our unit and no tracker knows of.
     */
    void ReleaseTextureUnit();

private:
    using UpdateHandler = void (OrvelLutEffectInstance::*)();

    void UpdateNone() {}
    void UpdateUniforms();
    void UpdateTexture();
    void UpdateAll();
    void SendParam();

    static const std::array<UpdateHandler, kDirtyStates> kUpdateHandlers; // by what is dirty

    OrvelLutEffect* const mEffect;
    std::array<float, 4> mParam{};
    int32_t mStrength = 100; // percent
    GLenum mTextureUnit = GL_TEXTURE0;
    OrvelTexture2D* mLutTexture = nullptr; // the manager's; other instances fill it, too
    std::unique_ptr<OrvelPixelBuffer> mPixelBuffer;

    bool mUnitWasActive = true; // the texture unit, when the game handed over
    GLint mGameSampler = 0;     // bound to that unit, while ours is in use
};

} // namespace android::orvel::next
