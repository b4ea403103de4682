#include "PlainFsr.h"

namespace bench {

const char* const kPlainEasu = R"(#version 300 es
precision highp float;
precision highp int;
uniform vec4 _EASUParameters[4];
uniform uvec2 _OutputSize;
uniform lowp sampler2D _MainTex;
in vec2 vs_TEXCOORD0;
layout(location = 0) out vec4 SV_Target0;

float approximateReciprocal(float a) { return uintBitsToFloat(0x7EF07EBBu - floatBitsToUint(a)); }
float approximateInverseRoot(float a) { return uintBitsToFloat(0x5F347D74u - (floatBitsToUint(a) >> 1)); }

vec3 colourAt(ivec2 base, ivec2 offset) {
    return texelFetch(_MainTex, clamp(base + offset, ivec2(0), textureSize(_MainTex, 0) - 1), 0).rgb;
}

float lumaAt(ivec2 base, ivec2 offset) {
    vec3 c = colourAt(base, offset);
    return c.g + (c.r + c.b) / 2.0;
}

void addCentre(ivec2 base, ivec2 m, float w, inout vec2 dir, inout float len) {
    float centre = lumaAt(base, m);
    float left = lumaAt(base, m + ivec2(-1, 0));
    float right = lumaAt(base, m + ivec2(1, 0));
    float up = lumaAt(base, m + ivec2(0, -1));
    float down = lumaAt(base, m + ivec2(0, 1));
    float dX = right - left;
    float sX = clamp(abs(dX) * approximateReciprocal(max(abs(right - centre), abs(centre - left))), 0.0, 1.0);
    float dY = down - up;
    float sY = clamp(abs(dY) * approximateReciprocal(max(abs(down - centre), abs(centre - up))), 0.0, 1.0);
    dir += w * vec2(dX, dY);
    len += w * sX * sX + w * sY * sY;
}

void addTap(ivec2 base, ivec2 tap, vec2 f, vec2 dir, vec2 scale, float lob, float clip, inout vec3 colour,
            inout float weight) {
    vec2 o = vec2(tap) - f;
    vec2 v = vec2(o.x * dir.x + o.y * dir.y, -o.x * dir.y + o.y * dir.x) * scale;
    float d = min(dot(v, v), clip);
    float a = 2.0 / 5.0 * d - 1.0;
    float b = lob * d - 1.0;
    float w = (25.0 / 16.0 * a * a - 9.0 / 16.0) * b * b;
    colour += w * colourAt(base, tap);
    weight += w;
}

void main() {
    uvec2 ip = uvec2(vs_TEXCOORD0 * vec2(_OutputSize));
    vec2 pos = vec2(ip) * _EASUParameters[0].xy + _EASUParameters[0].zw;
    ivec2 base = ivec2(floor(pos));
    vec2 f = pos - floor(pos);

    vec2 dir = vec2(0.0);
    float len = 0.0;
    addCentre(base, ivec2(0, 0), (1.0 - f.x) * (1.0 - f.y), dir, len);
    addCentre(base, ivec2(1, 0), f.x * (1.0 - f.y), dir, len);
    addCentre(base, ivec2(0, 1), (1.0 - f.x) * f.y, dir, len);
    addCentre(base, ivec2(1, 1), f.x * f.y, dir, len);

    float q = dot(dir, dir);
    if (q < 1.0 / 32768.0) {
        dir.x = 1.0;
    } else {
        dir *= approximateInverseRoot(q);
    }
    len = (len / 2.0) * (len / 2.0);
    float stretch = dot(dir, dir) * approximateReciprocal(max(abs(dir.x), abs(dir.y)));
    vec2 scale = vec2(1.0 + (stretch - 1.0) * len, 1.0 - len / 2.0);
    float lob = 0.5 + (1.0 / 4.0 - 0.04 - 0.5) * len;
    float clip = approximateReciprocal(lob);

    vec3 colour = vec3(0.0);
    float weight = 0.0;
    for (int y = -1; y <= 2; ++y) {
        for (int x = -1; x <= 2; ++x) {
            bool corner = (x == -1 || x == 2) && (y == -1 || y == 2);
            if (!corner) {
                addTap(base, ivec2(x, y), f, dir, scale, lob, clip, colour, weight);
            }
        }
    }
    vec3 nearF = colourAt(base, ivec2(0, 0));
    vec3 nearG = colourAt(base, ivec2(1, 0));
    vec3 nearJ = colourAt(base, ivec2(0, 1));
    vec3 nearK = colourAt(base, ivec2(1, 1));
    vec3 lowest = min(min(nearF, nearG), min(nearJ, nearK));
    vec3 highest = max(max(nearF, nearG), max(nearJ, nearK));
    SV_Target0 = vec4(clamp(colour / weight, lowest, highest), 1.0);
}
)";

const char* const kPlainRcas = R"(#version 300 es
precision highp float;
precision highp int;
uniform vec4 _RCASParameters;
uniform uvec2 _OutputSize;
uniform lowp sampler2D _MainTex;
in vec2 vs_TEXCOORD0;
layout(location = 0) out vec4 SV_Target0;

vec3 colourAt(ivec2 p) { return texelFetch(_MainTex, clamp(p, ivec2(0), ivec2(_OutputSize) - 1), 0).rgb; }

float halfReciprocal(float a) {
    float r = unpackHalf2x16(0x778Du - packHalf2x16(vec2(a, 0.0))).x;
    return r * (2.0 - r * a);
}

float channelLobe(float b, float d, float e, float f, float h) {
    float mn = min(min(b, d), min(f, h));
    float mx = max(max(b, d), max(f, h));
    float hitMin = min(mn, e) / max(4.0 * mx, 1.0 / 32768.0);
    float hitMax = (1.0 - max(mx, e)) / min(4.0 * mn - 4.0, -1.0 / 32768.0);
    return max(-hitMin, hitMax);
}

void main() {
    ivec2 p = ivec2(uvec2(vs_TEXCOORD0 * vec2(_OutputSize)));
    vec3 b = colourAt(p + ivec2(0, -1));
    vec3 d = colourAt(p + ivec2(-1, 0));
    vec3 e = colourAt(p);
    vec3 f = colourAt(p + ivec2(1, 0));
    vec3 h = colourAt(p + ivec2(0, 1));
    float red = channelLobe(b.r, d.r, e.r, f.r, h.r);
    float green = channelLobe(b.g, d.g, e.g, f.g, h.g);
    float blue = channelLobe(b.b, d.b, e.b, f.b, h.b);
    float lobe = max(-0.1875, min(max(red, max(green, blue)), 0.0)) * _RCASParameters.y;
    SV_Target0 = vec4((e + lobe * (b + d + f + h)) * halfReciprocal(4.0 * lobe + 1.0), 1.0);
}
)";

} // namespace bench
