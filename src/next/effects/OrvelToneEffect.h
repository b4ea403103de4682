// What green and brown have in common: one parameter, the dark edge.
#pragma once

#include "next/effects/OrvelVisualEffect.h"

namespace android::orvel::next {

class OrvelToneEffect : public OrvelVisualEffect {
public:
    using OrvelVisualEffect::OrvelVisualEffect;

    void PostInit() override { mParamLocation = FindUniform("param"); }
    bool SupportFramebufferFetch() const override { return true; }
    /** @return where "param" lies: x above 1 darkens the edge */
    GLint GetParamLocation() const { return mParamLocation; }

private:
    GLint mParamLocation = -1;
};

} // namespace android::orvel::next
