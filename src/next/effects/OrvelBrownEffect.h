// A filter like an old photograph: the colours of sepia.
#pragma once

#include "next/effects/OrvelToneEffect.h"

namespace android::orvel::next {

class OrvelBrownEffect : public OrvelToneEffect {
public:
    using OrvelToneEffect::OrvelToneEffect;

    std::string GetFragmentSource() override;
};

} // namespace android::orvel::next
