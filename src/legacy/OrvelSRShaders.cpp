// Written from the published description of FidelityFX Super Resolution 1 (2021-06-29), for one pixel per invocation
// and 32-bit arithmetic throughout.
#include "legacy/OrvelSRShaders.h"

namespace android::orvel {

const char* const kFsrVertexShader = R"(#version 300 es
in highp vec4 in_POSITION0;
out highp vec2 vs_TEXCOORD0;

void main() {
    gl_Position = vec4(in_POSITION0.xy, 0.0, 1.0);
    vs_TEXCOORD0 = (in_POSITION0.xy + 1.0) * 0.5;
}
)";

const char* const kEasuShader = R"(#version 300 es
#ifdef GL_OES_sample_variables
#extension GL_OES_sample_variables : enable
#endif
precision highp float;
precision highp int;

uniform vec4 _EASUParameters[4];
uniform uvec2 _OutputSize;
uniform lowp sampler2D _MainTex;
in vec2 vs_TEXCOORD0;
layout(location = 0) out vec4 SV_Target0;

// Of numbers that are not negative: they are ordered like the integers that their bits make, and integers are cheaper
// to compare wherever min and max have to mind NaN. (A negative colour of a float texture sorts below all others, and
// is stored as 0 in the end either way.)
float least(float a, float b) { return intBitsToFloat(min(floatBitsToInt(a), floatBitsToInt(b))); }
float most(float a, float b) { return intBitsToFloat(max(floatBitsToInt(a), floatBitsToInt(b))); }
vec3 least(vec3 a, vec3 b) { return intBitsToFloat(min(floatBitsToInt(a), floatBitsToInt(b))); }
vec3 most(vec3 a, vec3 b) { return intBitsToFloat(max(floatBitsToInt(a), floatBitsToInt(b))); }

// Edge-adaptive spatial upsampling. Around the output pixel's place in the input lie twelve texels; f, g, j and k are
// the nearest ones:
//
//        b c
//      e f g h
//      i j k l
//        n o

// Approximate 1/a and 1/sqrt(a). At 0 they are large but finite, so flat regions make no NaN.
float reciprocal(float a) { return uintBitsToFloat(0x7EF07EBBu - floatBitsToUint(a)); }
float inverseRoot(float a) { return uintBitsToFloat(0x5F347D74u - (floatBitsToUint(a) >> 1)); }

// A texel with its luma, twice the usual scale, in the fourth component.
vec4 texel(int x, int y) {
    vec3 colour = texelFetch(_MainTex, ivec2(x, y), 0).rgb;
    return vec4(colour, colour.g + (colour.r + colour.b) * 0.5);
}

// How the luma runs along one axis through a centre. x: the gradient. y: 1 on a steady slope, 0 where it turns.
vec2 slope(float before, float centre, float after) {
    float gradient = after - before;
    float steepest = most(abs(after - centre), abs(centre - before));
    float steady = least(abs(gradient) * reciprocal(steepest), 1.0);
    return vec2(gradient, steady * steady);
}

// What a tap weighs at v, its place in the kernel's own axes: a Lanczos window approximated without sine and cosine.
float weight(vec2 v, float lobe, float clip) {
    float d = least(dot(v, v), clip);
    float window = lobe * d - 1.0;
    float base = 0.4 * d - 1.0;
    return (1.5625 * base * base - 0.5625) * (window * window);
}

void main() {
    // The output pixel, whole numbers, and its place in the input: the texel f and the fraction beyond it.
    vec2 pixel = vec2(uvec2(vs_TEXCOORD0 * vec2(_OutputSize)));
    vec2 place = pixel * _EASUParameters[3].zw + _EASUParameters[0].zw;
    vec2 whole = floor(place);
    vec2 fraction = place - whole;

    // Columns and rows of the twelve texels; beyond the edge the outermost texel repeats.
    ivec2 last = textureSize(_MainTex, 0) - 1;
    ivec4 column = clamp(ivec4(whole.x) + ivec4(-1, 0, 1, 2), 0, last.x);
    ivec4 row = clamp(ivec4(whole.y) + ivec4(-1, 0, 1, 2), 0, last.y);
    vec4 b = texel(column.y, row.x);
    vec4 c = texel(column.z, row.x);
    vec4 e = texel(column.x, row.y);
    vec4 f = texel(column.y, row.y);
    vec4 g = texel(column.z, row.y);
    vec4 h = texel(column.w, row.y);
    vec4 i = texel(column.x, row.z);
    vec4 j = texel(column.y, row.z);
    vec4 k = texel(column.z, row.z);
    vec4 l = texel(column.w, row.z);
    vec4 n = texel(column.y, row.w);
    vec4 o = texel(column.z, row.w);

    // Direction and strength of the edge: the slopes through the four nearest texels, weighted bilinearly.
    vec2 opposite = 1.0 - fraction;
    vec4 nearness = vec4(opposite.x, fraction.x, opposite.x, fraction.x) * vec4(opposite.yy, fraction.yy);
    vec2 across = slope(e.a, f.a, g.a) * nearness.x + slope(f.a, g.a, h.a) * nearness.y +
                  slope(i.a, j.a, k.a) * nearness.z + slope(j.a, k.a, l.a) * nearness.w;
    vec2 upward = slope(b.a, f.a, j.a) * nearness.x + slope(c.a, g.a, k.a) * nearness.y +
                  slope(f.a, j.a, n.a) * nearness.z + slope(g.a, k.a, o.a) * nearness.w;
    vec2 direction = vec2(across.x, upward.x);
    float strength = (across.y + upward.y) * 0.5;
    strength *= strength;

    // To unit length; where nothing slopes any direction will do.
    float square = dot(direction, direction);
    if (square < 1.0 / 32768.0) {
        direction.x = 1.0;
    } else {
        direction *= inverseRoot(square);
    }

    // The kernel: the stronger the edge, the longer along it and the narrower across it, by up to sqrt(2) on a
    // diagonal; the window grows from a radius of sqrt(2) texels to a little over two, and its negative sides deepen.
    float stretch = dot(direction, direction) * reciprocal(most(abs(direction.x), abs(direction.y)));
    vec2 scale = vec2(1.0 + (stretch - 1.0) * strength, 1.0 - 0.5 * strength);
    float lobe = 0.5 - 0.29 * strength;
    float clip = reciprocal(lobe);

    // A tap's place in the kernel's axes is the sum of what its column and its row give.
    vec2 perColumn = vec2(direction.x, -direction.y) * scale;
    vec2 perRow = vec2(direction.y, direction.x) * scale;
    vec2 column1 = -fraction.x * perColumn;
    vec2 column0 = column1 - perColumn;
    vec2 column2 = column1 + perColumn;
    vec2 column3 = column2 + perColumn;
    vec2 row1 = -fraction.y * perRow;
    vec2 row0 = row1 - perRow;
    vec2 row2 = row1 + perRow;
    vec2 row3 = row2 + perRow;
    // Colours in rgb, weights in a.
    vec4 sum = vec4(b.rgb, 1.0) * weight(column1 + row0, lobe, clip);
    sum += vec4(c.rgb, 1.0) * weight(column2 + row0, lobe, clip);
    sum += vec4(e.rgb, 1.0) * weight(column0 + row1, lobe, clip);
    sum += vec4(f.rgb, 1.0) * weight(column1 + row1, lobe, clip);
    sum += vec4(g.rgb, 1.0) * weight(column2 + row1, lobe, clip);
    sum += vec4(h.rgb, 1.0) * weight(column3 + row1, lobe, clip);
    sum += vec4(i.rgb, 1.0) * weight(column0 + row2, lobe, clip);
    sum += vec4(j.rgb, 1.0) * weight(column1 + row2, lobe, clip);
    sum += vec4(k.rgb, 1.0) * weight(column2 + row2, lobe, clip);
    sum += vec4(l.rgb, 1.0) * weight(column3 + row2, lobe, clip);
    sum += vec4(n.rgb, 1.0) * weight(column1 + row3, lobe, clip);
    sum += vec4(o.rgb, 1.0) * weight(column2 + row3, lobe, clip);

    // Negative sides overshoot at edges: no colour beyond those of the four nearest texels.
    vec3 lowest = least(least(f.rgb, g.rgb), least(j.rgb, k.rgb));
    vec3 highest = most(most(f.rgb, g.rgb), most(j.rgb, k.rgb));
    SV_Target0 = vec4(least(most(sum.rgb / sum.a, lowest), highest), 1.0);
}
)";

const char* const kRcasShader = R"(#version 300 es
#ifdef GL_OES_sample_variables
#extension GL_OES_sample_variables : enable
#endif
precision highp float;
precision highp int;

uniform vec4 _RCASParameters;
uniform uvec2 _OutputSize;
uniform lowp sampler2D _MainTex;
in vec2 vs_TEXCOORD0;
layout(location = 0) out vec4 SV_Target0;

// Of numbers that are not negative: they are ordered like the integers that their bits make, and integers are cheaper
// to compare wherever min and max have to mind NaN.
float least(float a, float b) { return intBitsToFloat(min(floatBitsToInt(a), floatBitsToInt(b))); }
float most(float a, float b) { return intBitsToFloat(max(floatBitsToInt(a), floatBitsToInt(b))); }
vec3 least(vec3 a, vec3 b) { return intBitsToFloat(min(floatBitsToInt(a), floatBitsToInt(b))); }
vec3 most(vec3 a, vec3 b) { return intBitsToFloat(max(floatBitsToInt(a), floatBitsToInt(b))); }

// Robust contrast-adaptive sharpening: takes so much of the four neighbours away that no channel can leave 0 to 1.

// Approximate 1/a for a from a quarter to 1: a guess in half precision, the integer 0x778D minus a's packed half, then
// one step of Newton's method. In that range a half's bits are those of the rounded float but for the exponent's bias,
// so the subtraction is done on the float, with the same result; packing and unpacking cost more than all the rest.
float halfReciprocal(float a) {
    uint bits = floatBitsToUint(a);
    uint rounded = (bits + 0xFFFu + ((bits >> 13) & 1u)) & 0xFFFFE000u;
    float guess = uintBitsToFloat(((0x778Du + 2u * (112u << 10)) << 13) - rounded);
    return guess * (2.0 - guess * a);
}

vec3 texel(int x, int y) { return texelFetch(_MainTex, ivec2(x, y), 0).rgb; }

void main() {
    // The pixel and its neighbours; beyond the edge the outermost pixel repeats.
    ivec2 pixel = ivec2(uvec2(vs_TEXCOORD0 * vec2(_OutputSize)));
    ivec2 before = max(pixel - 1, 0);
    ivec2 after = min(pixel + 1, ivec2(_OutputSize) - 1);
    vec3 centre = texel(pixel.x, pixel.y);
    vec3 up = texel(pixel.x, before.y);
    vec3 left = texel(before.x, pixel.y);
    vec3 right = texel(after.x, pixel.y);
    vec3 down = texel(pixel.x, after.y);
    vec3 lowest = least(least(up, left), least(right, down));
    vec3 highest = most(most(up, left), most(right, down));

    // How much can be taken from the neighbours, per channel: until the result is 0, or until it is 1. A black or a
    // white ring would divide 0 by 0.
    const float tiny = 1.0 / 32768.0;
    vec3 untilBlack = least(lowest, centre) / most(4.0 * highest, vec3(tiny));
    vec3 untilWhite = (1.0 - most(highest, centre)) / most(4.0 - 4.0 * lowest, vec3(tiny));
    vec3 limit = least(untilBlack, untilWhite);

    // Of the channels the one that allows least, and never so much that noise would be blown up.
    float lobe = -least(least(limit.r, limit.g), least(limit.b, 0.1875)) * _RCASParameters.y;
    vec3 sharpened = (centre + lobe * (up + left + right + down)) * halfReciprocal(4.0 * lobe + 1.0);
    SV_Target0 = vec4(sharpened, 1.0);
}
)";

} // namespace android::orvel
