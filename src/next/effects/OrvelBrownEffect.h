// A filter like an old photograph: the colours of sepia.
#pragma once

#include "next/effects/OrvelVisualEffect.h"

namespace android::orvel::next {

class OrvelBrownEffect : public OrvelVisualEffect {
public:
    using OrvelVisualEffect::OrvelVisualEffect;

    void PostInit() override;
    std::string GetFragmentSource() override;
    bool SupportFramebufferFetch() const override { return true; }
    /** @return where "param" lies: x above 1 darkens the edge */
    GLint GetParamLocation() const { return mParamLocation; }

private:
    GLint mParamLocation = -1;
};

} // namespace android::orvel::next
