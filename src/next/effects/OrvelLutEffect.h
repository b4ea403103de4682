// A filter that looks each colour up in an image.
#pragma once

#include "next/effects/OrvelVisualEffect.h"

namespace android::orvel::next {

/**
 * The image has 8 x 8 tiles of 64 x 64 texels. Tile t, counted from the left and from the image's first row, holds the
 * colours of blue t / 63; in a tile red grows to the right and green downwards. What lies between is interpolated.
 */
class OrvelLutEffect : public OrvelVisualEffect {
public:
    using OrvelVisualEffect::OrvelVisualEffect;

    void PostInit() override;
    std::string GetFragmentSource() override;
    bool SupportFramebufferFetch() const override { return true; }
    /** @return where "param" lies: x is the filter's strength, 1 in full; y above 1 darkens the edge */
    GLint GetParamLocation() const { return mParamLocation; }

private:
    GLint mParamLocation = -1;
    GLint mLutTexLocation = -1; // the uniform is never written: a sampler begins as unit 0
};

} // namespace android::orvel::next
