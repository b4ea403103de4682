// The little linear algebra that a camera needs. Matrices are column-major, as GL reads them.
#pragma once

#include <array>
#include <cmath>

namespace sample {

struct Vec3 {
    float x = 0;
    float y = 0;
    float z = 0;
};

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator*(Vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline float dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3 cross(Vec3 a, Vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
inline Vec3 normalize(Vec3 a) { return a * (1 / std::sqrt(dot(a, a))); }

using Mat4 = std::array<float, 16>;

inline Mat4 operator*(const Mat4& a, const Mat4& b) {
    Mat4 product{};
    for (size_t i = 0; i < 16; ++i) {
        for (size_t k = 0; k < 4; ++k) {
            product[i] += a[k * 4 + i % 4] * b[i / 4 * 4 + k];
        }
    }
    return product;
}

constexpr float kNear = 0.5F; // the shaders that read depth know these two
constexpr float kFar = 150;

/** Where the picture is taken from; `right` and `up` are as long as half the picture at distance 1. */
struct Camera {
    Vec3 eye;
    Vec3 forward;
    Vec3 right;
    Vec3 up;
    Mat4 viewProjection;
};

/** @param slope half the picture's height at distance 1 */
inline Camera lookAt(Vec3 eye, Vec3 target, float slope, float aspect) {
    const Vec3 f = normalize(target - eye);
    const Vec3 r = normalize(cross(f, {0, 1, 0}));
    const Vec3 u = cross(r, f);
    const Mat4 view = {r.x, u.x, -f.x, 0, r.y,          u.y,          -f.y,        0,
                       r.z, u.z, -f.z, 0, -dot(r, eye), -dot(u, eye), dot(f, eye), 1};
    const float depth = 1 / (kNear - kFar);
    const Mat4 projection = {
        1 / (slope * aspect),     0, 0, 0, 0, 1 / slope, 0, 0, 0, 0, (kFar + kNear) * depth, -1, 0, 0,
        2 * kFar * kNear * depth, 0};
    return {eye, f, r * (slope * aspect), u * slope, projection * view};
}

} // namespace sample
