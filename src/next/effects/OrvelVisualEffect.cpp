#include "next/effects/OrvelVisualEffect.h"

#include "next/OrvelNext.h"

#include <android-base/file.h>

namespace android::orvel::next {

namespace {

constexpr char kVertexSource[] = R"(#version 310 es
layout(location = 0) out vec4 vs_TEXCOORD0;

void main() {
    // Vertices 0, 1, 2 lie at (-1, -1), (-1, 3), (3, -1): the screen is the lower left half of their square.
    gl_Position = vec4(vec2(float(gl_VertexID / 2), float(gl_VertexID % 2)) * 4.0 - 1.0, 0.0, 1.0);
    // 0 to 1 across the screen.
    vs_TEXCOORD0 = vec4((gl_Position.xy + 1.0) * 0.5, 0.0, 1.0);
}
)";

// The extension stands before everything else: compilers refuse it after a precision.
constexpr char kFragmentHead[] = R"(#version 310 es
#extension GL_EXT_shader_framebuffer_fetch : require
precision highp float;

uniform vec4 param;
layout(location = 0) in vec4 vs_TEXCOORD0;
layout(location = 0) inout highp vec4 colour; // comes as what was drawn so far

// Fades to a dark, nearly opaque black from a circle of 0.35 of the screen's size outwards.
vec4 darkEdge(vec4 inside) {
    float factor = smoothstep(0.0, 0.5, length(vs_TEXCOORD0.xy - 0.5) - 0.35);
    return mix(inside, vec4(0.0, 0.0, 0.0, 0.8), factor);
}

)";

// A program binary's file: bytes of the binary and its format, 32 bits each with the lowest byte first, the binary.
constexpr size_t kBinaryHeader = 8;

uint32_t numberAt(const std::string& file, size_t offset) {
    uint32_t number = 0;
    for (size_t i = 0; i < sizeof number; ++i) {
        number |= uint32_t{static_cast<uint8_t>(file[offset + i])} << (8 * i);
    }
    return number;
}

} // namespace

void OrvelVisualEffect::Init(const std::string& path) {
    if (SupportFramebufferFetch()) {
        if (HasExtensions("GL_EXT_shader_framebuffer_fetch")) {
            mFramebufferFetch = FETCH_EXT;
        } else if (HasExtensions("GL_ARM_shader_framebuffer_fetch")) {
            mFramebufferFetch = FETCH_ARM;
        }
    }
    if (mBinary) {
        CreateFromBinarySource(path);
    } else {
        CreateFromShaderSource();
    }
    mValid = mProgram.IsValid();
    if (mValid) {
        PostInit();
    }
}

void OrvelVisualEffect::CreateFromShaderSource() {
    mProgram.CreateFromShaderSource(GetVertexSource(), GetFragmentSource());
}

void OrvelVisualEffect::CreateFromBinarySource(const std::string& path) {
    std::string file;
    if (base::ReadFileToString(path, &file, /*follow_symlinks=*/true) && file.size() > kBinaryHeader) {
        const auto length = static_cast<int32_t>(numberAt(file, 0));
        const bool whole = length >= 1 && static_cast<size_t>(length) <= file.size() - kBinaryHeader;
        if (whole && mProgram.CreateFromBinarySource(&file[kBinaryHeader], numberAt(file, 4), length)) {
            return;
        }
    }
    CreateFromShaderSource();
}

std::string OrvelVisualEffect::GetVertexSource() { return kVertexSource; }

std::string OrvelVisualEffect::FragmentSource(const char* main) const {
    return mFramebufferFetch == FETCH_EXT ? std::string(kFragmentHead) + main : std::string();
}

GLint OrvelVisualEffect::FindUniform(const char* name) {
    const GLint location = mProgram.GetUniformLocation(name);
    if (location == -1) {
        mValid = false;
    }
    return location;
}

} // namespace android::orvel::next
