#include "next/effects/OrvelToneEffectInstance.h"

#include "next/OrvelNext.h"

namespace android::orvel::next {

constexpr std::array<OrvelToneEffectInstance::UpdateHandler, OrvelVisualEffectInstance::kDirtyStates>
    OrvelToneEffectInstance::kUpdateHandlers = {
        &OrvelToneEffectInstance::UpdateNone,
        &OrvelToneEffectInstance::UpdateUniforms,
        &OrvelToneEffectInstance::UpdateTexture,
        &OrvelToneEffectInstance::UpdateAll,
};

void OrvelToneEffectInstance::Tick(OrvelStateTracker&) { (this->*kUpdateHandlers[mDirty])(); }

void OrvelToneEffectInstance::UpdateAll() {
    mParam[0] = DarkEdgeParam();
    gl.glUniform4fv(mEffect->GetParamLocation(), 1, mParam.data());
    mDirty = 0;
}

} // namespace android::orvel::next
