// A filter like night vision: how bright a pixel is, in green.
#pragma once

#include "next/effects/OrvelToneEffect.h"

namespace android::orvel::next {

class OrvelGreenEffect : public OrvelToneEffect {
public:
    using OrvelToneEffect::OrvelToneEffect;

    std::string GetFragmentSource() override;
};

} // namespace android::orvel::next
