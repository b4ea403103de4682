// The filter type that draws the brown effect.
#pragma once

#include "next/effects/OrvelBrownEffect.h"
#include "next/effects/OrvelToneEffectInstance.h"

namespace android::orvel::next {

class OrvelBrownEffectInstance : public OrvelToneEffectInstance {
public:
    /** @param effect null makes an instance that is disabled */
    explicit OrvelBrownEffectInstance(OrvelBrownEffect* effect) : OrvelToneEffectInstance(effect) {}
};

} // namespace android::orvel::next
