// The filter type that draws the green effect.
#pragma once

#include "next/effects/OrvelGreenEffect.h"
#include "next/effects/OrvelToneEffectInstance.h"

namespace android::orvel::next {

class OrvelGreenEffectInstance : public OrvelToneEffectInstance {
public:
    /** @param effect null makes an instance that is disabled */
    explicit OrvelGreenEffectInstance(OrvelGreenEffect* effect) : OrvelToneEffectInstance(effect) {}
};

} // namespace android::orvel::next
