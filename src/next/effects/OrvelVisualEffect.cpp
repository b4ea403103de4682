#include "next/effects/OrvelVisualEffect.h"

#include "next/OrvelNext.h"

#include <android-base/file.h>
#include <android-base/unique_fd.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <vector>

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

/** A program binary's file: bytes of the binary and its format, 32 bits each with the lowest byte first, the binary. */
class BinaryFile {
public:
    /** @return whether the file holds what it says it does */
    bool Read(const std::string& path) {
        const base::unique_fd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
        struct stat info {};
        std::array<uint8_t, 8> header;
        if (file < 0 || fstat(file, &info) != 0 || !base::ReadFully(file, header.data(), header.size())) {
            return false;
        }
        const auto length = static_cast<int32_t>(NumberAt(&header[0]));
        if (length < 1 || length > kMaxLength || length > info.st_size - static_cast<off_t>(header.size())) {
            return false;
        }
        mFormat = NumberAt(&header[4]);
        mBinary.resize(static_cast<size_t>(length));
        return base::ReadFully(file, mBinary.data(), mBinary.size());
    }
    GLenum Format() const { return mFormat; }
    std::vector<uint8_t>& Binary() { return mBinary; }

private:
    static constexpr int32_t kMaxLength = 16 << 20; // bytes; more than any of our programs, not too much for a game

    static uint32_t NumberAt(const uint8_t* at) {
        return uint32_t{at[0]} | uint32_t{at[1]} << 8 | uint32_t{at[2]} << 16 | uint32_t{at[3]} << 24;
    }

    GLenum mFormat = 0;
    std::vector<uint8_t> mBinary;
};

/** @return whether the driver takes binaries of that format; to offer others would leave an error with the game */
bool isKnownFormat(GLenum format) {
    GLint count = 0;
    gl.glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS, &count);
    std::vector<GLint> formats(static_cast<size_t>(std::max(count, 0)));
    if (!formats.empty()) {
        gl.glGetIntegerv(GL_PROGRAM_BINARY_FORMATS, formats.data());
    }
    return std::find(formats.begin(), formats.end(), static_cast<GLint>(format)) != formats.end();
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
    BinaryFile file;
    if (file.Read(path) && isKnownFormat(file.Format()) &&
        mProgram.CreateFromBinarySource(file.Binary().data(), file.Format(),
                                        static_cast<GLsizei>(file.Binary().size()))) {
        return;
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
