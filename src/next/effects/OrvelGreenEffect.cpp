#include "next/effects/OrvelGreenEffect.h"

namespace android::orvel::next {

namespace {

constexpr char kMain[] = R"(void main() {
    // How bright the eye sees the colour.
    float grey = dot(vec3(0.299, 0.587, 0.114), colour.rgb);
    // The green of a night-vision device, that bright.
    colour.rgb = grey * vec3(0.19, 0.78, 0.50);
    if (param.x > 1.0) {
        colour = darkEdge(colour);
    }
}
)";

} // namespace

std::string OrvelGreenEffect::GetFragmentSource() { return FragmentSource(kMain); }

} // namespace android::orvel::next
