// What the instances of green and brown have in common: an effect whose only parameter is the dark edge.
#pragma once

#include "next/effects/OrvelToneEffect.h"
#include "next/effects/OrvelVisualEffectInstance.h"

#include <array>

namespace android::orvel::next {

class OrvelToneEffectInstance : public OrvelVisualEffectInstance {
public:
    void Tick(OrvelStateTracker& tracker) override;
    OrvelVisualEffect* GetEffect() override { return mEffect; }

protected:
    explicit OrvelToneEffectInstance(OrvelToneEffect* effect) : OrvelVisualEffectInstance(effect), mEffect(effect) {}

private:
    using UpdateHandler = void (OrvelToneEffectInstance::*)();

    void UpdateNone() {}
    // Deliberate: a dark edge that is switched while the filter is on shows when the filter is chosen the next time.
    void UpdateUniforms() {}
    void UpdateTexture() {}
    void UpdateAll();

    static const std::array<UpdateHandler, kDirtyStates> kUpdateHandlers; // by what is dirty

    OrvelToneEffect* const mEffect; // not null in an instance that is drawn
    std::array<float, 4> mParam{};
};

} // namespace android::orvel::next
