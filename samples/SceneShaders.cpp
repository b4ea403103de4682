// The shaders that make the scene.
#include "Shaders.h"

namespace sample::shaders {

namespace {

// What every fragment of the scene has: the light and the two outputs.
constexpr char kScene[] = R"(
uniform vec4 uScreen; // [w, h, 1 + 1/w, 1 + 1/h] of what is drawn into
uniform vec3 uEye;
uniform vec3 uForward;
uniform vec3 uRight;
uniform vec3 uUp;
uniform float uTime;
uniform sampler2D uNoise;
layout(location = 0) out vec4 outColour;
layout(location = 1) out vec4 outNormal;
const vec3 kSun = vec3(0.62, 0.58, 0.53);

void finish(vec3 colour, vec3 normal) {
    outColour = vec4(colour, 1.0);
    outNormal = vec4(normal * 0.5 + 0.5, 1.0);
}

vec3 skyColour(vec3 ray) {
    float up = max(ray.y, 0.0);
    vec3 colour = mix(vec3(0.93, 0.86, 0.78), vec3(0.22, 0.45, 0.82), 1.0 - exp2(-5.0 * up));
    float sun = max(dot(ray, kSun), 0.0);
    return colour + vec3(0.5, 0.35, 0.15) * pow(sun, 24.0);
}

vec3 screenRay() {
    vec2 at = gl_FragCoord.xy / uScreen.xy * 2.0 - 1.0;
    return normalize(uForward + at.x * uRight + at.y * uUp);
}
)";

constexpr char kMatrix[] = R"(
uniform mat4 uViewProjection;
)";

// As a shader translator writes a matrix down. It stands behind the other uniforms, so that its location is not 0.
constexpr char kColumns[] = R"(
uniform vec4 hlslcc_mtx4x4unity_MatrixVP[4];
#define uViewProjection mat4(hlslcc_mtx4x4unity_MatrixVP[0], hlslcc_mtx4x4unity_MatrixVP[1], \
                             hlslcc_mtx4x4unity_MatrixVP[2], hlslcc_mtx4x4unity_MatrixVP[3])
)";

constexpr char kPlacedInputs[] = R"(
layout(location = 0) in vec3 aPosition;
layout(location = 1) in vec3 aNormal;
uniform vec3 uPlace;
uniform vec3 uSize;
)";

constexpr char kPlaced[] = R"(
out vec3 vLocal;
out vec3 vWorld;
out vec3 vNormal;
void main() {
    vLocal = aPosition;
    vWorld = aPosition * uSize + uPlace;
    vNormal = aNormal;
    gl_Position = uViewProjection * vec4(vWorld, 1.0);
}
)";

constexpr char kFullScreen[] = R"(
out vec2 vUv;
void main() {
    vUv = vec2(gl_VertexID == 1 ? 2.0 : 0.0, gl_VertexID == 2 ? 2.0 : 0.0);
    gl_Position = vec4(vUv * 2.0 - 1.0, 1.0, 1.0);
}
)";

constexpr char kWaterSurface[] = R"(
uniform mat4 uViewProjection;
uniform float uLevel;
out vec3 vWorld;
void main() {
    vWorld = vec3((gl_VertexID & 1) == 0 ? 70.0 : -70.0, uLevel, gl_VertexID < 2 ? -70.0 : 70.0);
    gl_Position = uViewProjection * vec4(vWorld, 1.0);
}
)";

constexpr char kLand[] = R"(
in vec3 vWorld;
in vec3 vNormal;

// 1 in the light, less in the shadow of the hero or of a pillar
float shadow(vec3 p) {
    vec3 hero = vec3(0.0, 2.3, 0.0) - p;
    float beside = length(hero - kSun * dot(hero, kSun));
    float light = smoothstep(1.5, 1.7, beside);
    vec2 pillar = vec2(8.0, 0.0);
    for (int i = 0; i < 8; ++i) {
        pillar = 0.70710678 * vec2(pillar.x - pillar.y, pillar.x + pillar.y);
        vec2 foot = pillar - p.xz;
        float along = dot(foot, kSun.xz) / dot(kSun.xz, kSun.xz);
        float off = length(foot - kSun.xz * along);
        bool below = along > 0.0 && p.y + along * kSun.y < 4.6;
        light = min(light, below ? smoothstep(0.38, 0.5, off) : 1.0);
    }
    return light;
}

void main() {
    vec3 p = vWorld;
    float middle = length(p.xz);
    vec3 normal = normalize(vNormal);
    vec3 fine = texture(uNoise, p.xz * 0.06).rgb;
    vec2 close = p.xz * vec2(0.31, 0.23) + p.y * 0.2;
    vec2 closeX = dFdx(close);
    vec2 closeY = dFdy(close);
    vec3 colour;
    float light = 1.0;
    if (middle < 10.3) {
        // Paving: rings of stones with dark joints.
        float ring = middle * 1.4;
        float count = max(6.0, floor(floor(ring) * 3.6));
        float turn = (atan(p.z, p.x) / 6.283185 + 0.5) * count;
        vec2 stone = abs(fract(vec2(ring, turn)) - 0.5);
        float joint = smoothstep(0.43, 0.47, max(stone.x, stone.y));
        float parity = mod(floor(ring) + floor(turn), 2.0);
        colour = mix(vec3(0.62, 0.56, 0.48), vec3(0.45, 0.42, 0.42), parity) * (0.75 + 0.35 * fine.r);
        colour = mix(colour, vec3(0.16, 0.15, 0.15), joint);
        colour = mix(colour, vec3(0.8, 0.62, 0.25), step(abs(middle - 5.0), 0.12));
        normal = vec3(0.0, 1.0, 0.0);
    } else {
        float steep = 1.0 - normal.y;
        vec3 finest = textureGrad(uNoise, close, closeX, closeY).rgb;
        vec3 grass = mix(vec3(0.2, 0.36, 0.1), vec3(0.45, 0.52, 0.16), fine.r);
        grass *= 0.6 + 0.7 * finest.g;
        vec3 rock = vec3(0.42, 0.38, 0.35) * (0.55 + 0.5 * fine.b + 0.35 * finest.b);
        vec3 sand = vec3(0.72, 0.62, 0.42) * (0.8 + 0.3 * finest.r);
        colour = mix(grass, rock, smoothstep(0.16, 0.3, steep + 0.12 * fine.g));
        colour = mix(sand, colour, smoothstep(-0.5, 0.1, p.y + 0.3 * fine.r));
        colour = mix(colour, vec3(0.95), smoothstep(8.5, 10.0, p.y + 2.0 * fine.r - 3.0 * steep));
        normal = normalize(normal + 0.5 * (finest - 0.5));
    }
    if (middle < 18.0) {
        light = shadow(p);
    }
    float sun = max(dot(normal, kSun), 0.0) * light;
    finish(colour * (vec3(0.34, 0.4, 0.52) + vec3(1.15, 1.0, 0.8) * sun), normal);
}
)";

constexpr char kObject[] = R"(
in vec3 vLocal;
in vec3 vWorld;
in vec3 vNormal;
uniform int uHero;
void main() {
    vec3 normal = normalize(vNormal);
    vec3 away = normalize(vWorld - uEye);
    float around = atan(vLocal.z, vLocal.x) / 6.283185;
    vec3 colour;
    float shine;
    if (uHero == 1) {
        // Glazed tiles between golden bands, turning.
        vec2 tile = vec2((around + uTime * 0.05) * 32.0, acos(clamp(vLocal.y, -1.0, 1.0)) * 5.1);
        vec2 cell = abs(fract(tile) - 0.5);
        float parity = mod(floor(tile.x) + floor(tile.y), 2.0);
        colour = mix(vec3(0.75, 0.16, 0.12), vec3(0.92, 0.88, 0.8), parity);
        colour = mix(colour, vec3(0.9, 0.68, 0.2), smoothstep(0.4, 0.44, max(cell.x, cell.y)));
        shine = 0.9;
    } else {
        // Fluted stone.
        float flute = fract(around * 20.0) - 0.5;
        float shaft = step(0.1, vLocal.y) * step(vLocal.y, 0.88);
        vec3 side = vec3(-normal.z, 0.0, normal.x);
        normal = normalize(normal + side * flute * 1.6 * shaft);
        float grain = texture(uNoise, vec2(around * 0.5, vWorld.y * 0.1)).r;
        float band = smoothstep(0.42, 0.48, abs(fract(vWorld.y * 1.1) - 0.5)) * (1.0 - shaft * 0.6);
        colour = vec3(0.78, 0.74, 0.67) * (0.8 + 0.3 * grain) * (1.0 - 0.45 * band);
        shine = 0.1;
    }
    float sun = max(dot(normal, kSun), 0.0);
    vec3 mirrored = reflect(away, normal);
    float glint = pow(max(dot(mirrored, kSun), 0.0), 60.0);
    float rim = pow(1.0 - max(-dot(away, normal), 0.0), 4.0);
    vec3 ambient = mix(vec3(0.3, 0.27, 0.2), vec3(0.4, 0.46, 0.6), normal.y * 0.5 + 0.5);
    colour = colour * (ambient + vec3(1.05, 0.92, 0.75) * sun) + shine * (glint + 0.5 * rim * skyColour(mirrored));
    finish(colour, normal);
}
)";

constexpr char kSky[] = R"(
void main() {
    vec3 ray = screenRay();
    vec3 colour = skyColour(ray);
    colour += vec3(1.0, 0.9, 0.7) * smoothstep(0.9991, 0.9994, dot(ray, kSun));
    vec2 high = ray.xz / (ray.y + 0.12);
    float veil = texture(uNoise, high * 0.01 + uTime * 0.0005).r * 0.6 + texture(uNoise, high * 0.035).g * 0.4;
    colour = mix(colour, vec3(1.0, 0.97, 0.94), 0.75 * smoothstep(0.48, 0.72, veil) * smoothstep(0.02, 0.2, ray.y));
    finish(colour, vec3(0.0));
}
)";

constexpr char kClouds[] = R"(
void main() {
    vec3 ray = screenRay();
    vec2 high = ray.xz / (abs(ray.y) + 0.1) + uTime * 0.02;
    float bulk = texture(uNoise, high * 0.006).r * 0.7 + texture(uNoise, high * 0.05).b * 0.3;
    vec3 colour = mix(skyColour(ray), vec3(0.36, 0.38, 0.46), smoothstep(0.35, 0.6, bulk));
    finish(colour, vec3(0.0));
}
)";

constexpr char kWater[] = R"(
in vec3 vWorld;
uniform sampler2D uGrab;
void main() {
    vec2 slope = texture(uNoise, vWorld.xz * vec2(0.011, 0.017) + uTime * 0.004).rg;
    slope += texture(uNoise, vWorld.zx * vec2(0.023, 0.031) - uTime * 0.006).rg - 1.0;
    vec3 normal = normalize(vec3(slope.x * 0.35, 1.0, slope.y * 0.35));
    vec3 away = normalize(vWorld - uEye);
    // What lies below is shifted by up to so many pixels; uScreen.zw - 1 is one of them.
    vec2 below = gl_FragCoord.xy / uScreen.xy + slope * 24.0 * (uScreen.zw - 1.0);
    vec3 bed = texture(uGrab, below).rgb * vec3(0.42, 0.66, 0.66);
    vec3 mirrored = reflect(away, normal);
    float fresnel = 0.06 + 0.9 * pow(1.0 - max(-dot(away, normal), 0.0), 4.0);
    float glint = pow(max(dot(mirrored, kSun), 0.0), 200.0);
    finish(mix(bed, skyColour(mirrored), fresnel) + glint, normal);
}
)";

std::string scene(const char* body) { return whole(kScene) + body; }

} // namespace

std::string placed() { return whole((std::string(kPlacedInputs) + kMatrix + kPlaced).c_str()); }
std::string placedByColumns() { return whole((std::string(kPlacedInputs) + kColumns + kPlaced).c_str()); }
std::string fullScreen() { return whole(kFullScreen); }
std::string waterSurface() { return whole(kWaterSurface); }
std::string land() { return scene(kLand); }
std::string object() { return scene(kObject); }
std::string sky() { return scene(kSky); }
std::string clouds() { return scene(kClouds); }
std::string water() { return scene(kWater); }

} // namespace sample::shaders
