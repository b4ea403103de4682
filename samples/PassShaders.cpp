// The shaders that work on finished pictures, and those of the user interface.
#include "Shaders.h"

namespace sample::shaders {

namespace {

constexpr char kOutline[] = R"(
out vec4 outColour;
void main() { outColour = vec4(1.0); }
)";

constexpr char kPost[] = R"(
uniform vec4 uTexel; // [1/w, 1/h, w, h] of what is drawn into
uniform int uWork;
uniform sampler2D uColour;
uniform sampler2D uNormal;
uniform sampler2D uDepth;
uniform sampler2D uOutline;
out vec4 outColour;

float work(float value) {
    for (int i = 0; i < uWork; ++i) {
        value = fract(value * 1.37 + 0.11);
        value = value * (1.5 - value) + 0.01;
    }
    return value;
}

float distanceAt(ivec2 pixel) {
    float depth = texelFetch(uDepth, pixel, 0).r;
    return 150.0 * 0.5 / (150.0 - depth * 149.5); // far 150, near 0.5
}

void main() {
    vec2 uv = gl_FragCoord.xy * uTexel.xy;
    vec3 colour = texture(uColour, uv).rgb;
    ivec2 pixel = ivec2(gl_FragCoord.xy);
    float away = distanceAt(pixel);
    // Ink where the surface turns or ends.
    vec3 here = texelFetch(uNormal, pixel, 0).rgb;
    vec3 right = texelFetch(uNormal, pixel + ivec2(1, 0), 0).rgb;
    vec3 above = texelFetch(uNormal, pixel + ivec2(0, 1), 0).rgb;
    float edge = length(right - here) + length(above - here);
    colour *= 1.0 - 0.35 * smoothstep(0.35, 0.8, edge) * smoothstep(60.0, 15.0, away);
    float air = away < 149.0 ? 1.0 - exp2(-max(away - 14.0, 0.0) * 0.016) : 0.0;
    colour = mix(colour, vec3(0.74, 0.79, 0.88), air);
    colour = mix(colour, vec3(1.0, 0.85, 0.35), texelFetch(uOutline, pixel, 0).r);
    // A darker rim, measured in pixels.
    vec2 middle = gl_FragCoord.xy / uTexel.zw - 0.5;
    colour *= 1.06 - 0.5 * dot(middle, middle);
    colour = mix(colour, colour * colour * (3.0 - 2.0 * colour), 0.4);
    // Far less than a step of the target: work costs time and changes no picture.
    outColour = vec4(colour + 1e-6 * work(colour.r), 1.0);
}
)";

constexpr char kCopy[] = R"(#version 300 es
precision mediump float;
in highp vec2 vUv;
uniform sampler2D uColour;
out vec4 outColour;
void main() { outColour = texture(uColour, vUv); }
)";

constexpr char kUiVertex[] = R"(
layout(location = 0) in vec2 aPixel; // from the upper left corner
layout(location = 1) in vec4 aColour;
uniform vec3 uWindow;
out vec4 vColour;
void main() {
    vColour = aColour;
    gl_Position = vec4(aPixel.x / uWindow.x * 2.0 - 1.0, 1.0 - aPixel.y / uWindow.y * 2.0, 0.0, 1.0);
}
)";

constexpr char kUiFragment[] = R"(#version 300 es
precision mediump float;
in vec4 vColour;
out vec4 outColour;
void main() { outColour = vColour; }
)";

} // namespace

std::string whole(const char* body) {
    return std::string("#version 300 es\nprecision highp float;\nprecision highp int;\n") + body;
}

std::string outline() { return whole(kOutline); }
std::string post() { return whole(kPost); }
std::string copy() { return kCopy; }
std::string uiVertex() { return whole(kUiVertex); }
std::string uiFragment() { return kUiFragment; }

} // namespace sample::shaders
