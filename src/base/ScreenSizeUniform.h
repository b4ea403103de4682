// Games hand the size of what they draw into to their shaders in one of two forms of four floats:
// [w, h, 1 + 1/w, 1 + 1/h] and [1/w, 1/h, w, h].
#pragma once

#include <cmath>

namespace android::orvel {

inline bool isNear(double a, double b) { return std::abs(a - b) < 0.0001; }
inline bool isBetween(float value, float low, float high) { return low < value && value < high; }
/** Whether a float may be a width or height in texels: it is converted to an integer later. */
inline bool isExtent(float value) { return isBetween(value, 2.0f, 2147483648.0f); }

/** Recognises [w, h, 1 + 1/w, 1 + 1/h]. */
inline bool isScreenParams(const float* v) {
    return isExtent(v[0]) && isExtent(v[1]) && isBetween(v[2], 1, 2) && isBetween(v[3], 1, 2) &&
           isNear(v[2], 1.0 / v[0] + 1.0) && isNear(v[3], 1.0 / v[1] + 1.0);
}

/** Recognises [1/w, 1/h, w, h]. */
inline bool isTexelSize(const float* v) {
    return isExtent(v[2]) && isExtent(v[3]) && isBetween(v[0], 0, 1) && isBetween(v[1], 0, 1) &&
           isNear(v[0], 1.0 / v[2]) && isNear(v[1], 1.0 / v[3]);
}

/**
 * Rewrites the size in a uniform of one of the two forms, in the same form.
 * @param v          four floats
 * @param changeSize called with int& width and int& height, cut off to integers; may change both
 * @return whether v was rewritten: not, and deliberately so, when even one of the two stays what it is. A size with a
 *         fraction counts as changed.
 */
template <typename ChangeSize>
bool rewriteScreenSizeUniform(float* v, ChangeSize changeSize) {
    const bool isParams = isScreenParams(v);
    if (!isParams && !isTexelSize(v)) {
        return false;
    }
    float* const size = isParams ? v : v + 2;
    float* const inverse = isParams ? v + 2 : v;
    int width = static_cast<int>(size[0]);
    int height = static_cast<int>(size[1]);
    changeSize(width, height);
    if (static_cast<float>(width) == size[0] || static_cast<float>(height) == size[1]) {
        return false;
    }
    size[0] = static_cast<float>(width);
    size[1] = static_cast<float>(height);
    const float offset = isParams ? 1.0f : 0.0f;
    inverse[0] = offset + 1.0f / size[0];
    inverse[1] = offset + 1.0f / size[1];
    return true;
}

} // namespace android::orvel
