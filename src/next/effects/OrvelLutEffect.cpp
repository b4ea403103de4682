#include "next/effects/OrvelLutEffect.h"

namespace android::orvel::next {

namespace {

constexpr char kMain[] = R"(uniform highp sampler2D lutTex;

// The colour of one tile.
vec3 lookUp(float tile) {
    // Eight tiles make a row.
    float row = floor(tile * 0.125);
    vec2 corner = vec2(tile - 8.0 * row, row) * 0.125;
    // Red and green lead from the middle of the tile's first texel to the middle of its last: half a texel of 512,
    // then 63 of them. So the interpolation never touches the neighbouring tile.
    return texture(lutTex, corner + 0.000976562 + 0.123046875 * colour.rg).rgb;
}

void main() {
    // Blue lies between two tiles (or on one, which is then both).
    float blue = colour.b * 63.0;
    vec3 found = mix(lookUp(floor(blue)), lookUp(ceil(blue)), fract(blue));
    // As strong as the player wants it.
    vec3 filtered = mix(colour.rgb, found, param.x);
    // Where the game left the pixel transparent, it stays as it is; so does its alpha.
    colour.rgb = mix(colour.rgb, filtered, colour.a);
    if (param.y > 1.0) {
        colour = darkEdge(colour);
    }
}
)";

} // namespace

void OrvelLutEffect::PostInit() {
    mParamLocation = FindUniform("param");
    mLutTexLocation = FindUniform("lutTex");
}

std::string OrvelLutEffect::GetFragmentSource() { return FragmentSource(kMain); }

} // namespace android::orvel::next
