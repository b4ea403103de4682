#include "next/effects/OrvelBrownEffect.h"

namespace android::orvel::next {

namespace {

constexpr char kMain[] = R"(void main() {
    // Each row: how much of the colour's red, green and blue makes one channel of sepia.
    colour.rgb = vec3(dot(vec3(0.393, 0.769, 0.189), colour.rgb),
                      dot(vec3(0.349, 0.686, 0.168), colour.rgb),
                      dot(vec3(0.272, 0.534, 0.131), colour.rgb));
    if (param.x > 1.0) {
        colour = darkEdge(colour);
    }
}
)";

} // namespace

std::string OrvelBrownEffect::GetFragmentSource() { return FragmentSource(kMain); }

} // namespace android::orvel::next
