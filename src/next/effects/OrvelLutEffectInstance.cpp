#include "next/effects/OrvelLutEffectInstance.h"

#include "next/OrvelNext.h"
#include "next/OrvelPixelStore.h"
#include "next/OrvelTexture.h"
#include "next/effects/OrvelLutEffect.h"
#include "next/effects/OrvelVisualEffectManager.h"
#include "next/effects/PngImage.h"

namespace android::orvel::next {

constexpr std::array<OrvelLutEffectInstance::UpdateHandler, OrvelVisualEffectInstance::kDirtyStates>
    OrvelLutEffectInstance::kUpdateHandlers = {
        &OrvelLutEffectInstance::UpdateNone,
        &OrvelLutEffectInstance::UpdateUniforms,
        &OrvelLutEffectInstance::UpdateTexture,
        &OrvelLutEffectInstance::UpdateAll,
};

OrvelLutEffectInstance::OrvelLutEffectInstance(OrvelLutEffect* effect)
    : OrvelVisualEffectInstance(effect),
      mEffect(effect) {}

void OrvelLutEffectInstance::Init(OrvelVisualEffectManager* manager, const std::string& resource) {
    PNGResource file(resource);
    PngImage image(file);
    mEnabled = false;
    if (!image.ReadHeader()) {
        return;
    }
    mLutTexture = manager->GetPNGTexture(image.Width(), image.Height(), image.InternalFormat());
    if (!mLutTexture) {
        return;
    }
    mPixelBuffer.reset(CreatePBO(image.Bytes(), /*upload=*/true, GL_DYNAMIC_DRAW));
    UpdatePBO(mPixelBuffer.get(), [&](int, void* memory) { mEnabled = image.ReadRows(memory); });
    if (!mEnabled) {
        mPixelBuffer.reset();
    }
}

OrvelVisualEffect* OrvelLutEffectInstance::GetEffect() { return mEffect; }

void OrvelLutEffectInstance::EnableDarkEdge(bool enable) {
    OrvelVisualEffectInstance::EnableDarkEdge(enable);
    mParam[1] = DarkEdgeParam();
}

void OrvelLutEffectInstance::SetLutStrength(int strength) {
    mStrength = strength;
    mParam[0] = static_cast<float>(strength) / 100.0F;
    mDirty |= DIRTY_UNIFORMS;
}

void OrvelLutEffectInstance::Abandon() {
    if (mPixelBuffer) {
        mPixelBuffer->Abandon();
    }
}

void OrvelLutEffectInstance::Tick(OrvelStateTracker& tracker) {
    (this->*kUpdateHandlers[mDirty])();
    tracker.StoreActiveTexture();
    tracker.StoreTextureBinding2D();
    gl.glActiveTexture(mTextureUnit);
    // The game's sampler would go before our texture's own filters.
    mGameSampler = 0; // a driver without samplers answers nothing
    gl.glGetIntegerv(GL_SAMPLER_BINDING, &mGameSampler);
    if (mGameSampler != 0) {
        gl.glBindSampler(mTextureUnit - GL_TEXTURE0, 0);
    }
    mLutTexture->Bind();
    mUnitWasActive = tracker.GetStoredActiveTexture() == mTextureUnit;
}

void OrvelLutEffectInstance::ReleaseTextureUnit() {
    if (mGameSampler != 0) {
        gl.glBindSampler(mTextureUnit - GL_TEXTURE0, static_cast<GLuint>(mGameSampler));
    }
    if (!mUnitWasActive) { // the tracker puts back the texture of the unit that was active, only of that one
        mLutTexture->UnBind();
    }
}

void OrvelLutEffectInstance::SendParam() { gl.glUniform4fv(mEffect->GetParamLocation(), 1, mParam.data()); }

void OrvelLutEffectInstance::UpdateUniforms() {
    SendParam();
    mDirty &= ~DIRTY_UNIFORMS;
}

void OrvelLutEffectInstance::UpdateTexture() {
    const OrvelPixelStoreScope scope(OrvelPixelStoreScope::FROM_BUFFER);
    UpdateTextureData(mLutTexture, mPixelBuffer.get());
    mDirty &= ~DIRTY_TEXTURE;
}

void OrvelLutEffectInstance::UpdateAll() {
    mParam[0] = static_cast<float>(mStrength) / 100.0F;
    mParam[1] = DarkEdgeParam();
    UpdateUniforms();
    UpdateTexture();
}

} // namespace android::orvel::next
