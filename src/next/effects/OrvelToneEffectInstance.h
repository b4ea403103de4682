// What the instances of green and brown have in common: one parameter, the dark edge.
#pragma once

#include "next/effects/OrvelVisualEffectInstance.h"

#include <array>

namespace android::orvel::next {

class OrvelToneEffectInstance : public OrvelVisualEffectInstance {
public:
    void Tick(OrvelStateTracker& tracker) override;

protected:
    OrvelToneEffectInstance(const OrvelVisualEffect* effect, GLint paramLocation)
        : OrvelVisualEffectInstance(effect),
          mParamLocation(paramLocation) {}

private:
    using UpdateHandler = void (OrvelToneEffectInstance::*)();

    void UpdateNone() {}
    // Deliberate: a dark edge that is switched while the filter is on shows when the filter is chosen the next time.
    void UpdateUniforms() {}
    void UpdateTexture() {}
    void UpdateAll();

    static const std::array<UpdateHandler, kDirtyStates> kUpdateHandlers; // by what is dirty

    const GLint mParamLocation;
    std::array<float, 4> mParam{};
};

} // namespace android::orvel::next
