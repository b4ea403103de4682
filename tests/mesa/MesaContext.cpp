#include "MesaContext.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

using namespace android;

void orExit(bool fine, const char* what) {
    if (!fine) {
        std::fprintf(stderr, "%s failed: EGL 0x%x\n", what, static_cast<unsigned>(eglGetError()));
        std::exit(1);
    }
}

/** The system's driver as a loader hands it to the library. */
void connectLibrary() {
    const auto hooks = std::make_unique<gl_hooks_t>();
    egl_connection_t connection{};
    connection.hooks[egl_connection_t::GLESv2_INDEX] = hooks.get();
#define GL_ENTRY(Result, name, params, args, providers)                                                                \
    hooks->gl.name = reinterpret_cast<Result(GL_APIENTRY*) params>(eglGetProcAddress(#name));
#include <entries/gl_entries.in>
#undef GL_ENTRY
    connection.platform.glGetString = glGetString;
    connection.platform.eglGetCurrentContext = eglGetCurrentContext;
    orvel::next::InitNextFunctions(&connection);
}

GLuint compile(GLenum type, const char* source) {
    const GLuint shader = glCreateShader(type);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    char log[2000] = {};
    glGetShaderInfoLog(shader, sizeof log, nullptr, log);
    std::fputs(log, stderr); // warnings, too: ours have none
    return shader;
}

} // namespace

int Picture::differenceTo(const Picture& other) const {
    int steps = 0;
    while (steps < 256 && countDifferences(other, steps) > 0) {
        ++steps;
    }
    return steps;
}

size_t Picture::countDifferences(const Picture& other, int steps) const {
    if (width != other.width || height != other.height) {
        return pixels.size();
    }
    size_t count = 0;
    for (size_t i = 0; i < pixels.size(); ++i) {
        int largest = 0;
        for (size_t channel = 0; channel < 4; ++channel) {
            largest = std::max(largest, std::abs(pixels[i][channel] - other.pixels[i][channel]));
        }
        count += largest > steps;
    }
    return count;
}

MesaContext::MesaContext() {
    setenv("EGL_PLATFORM", "surfaceless", 1);
    mDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    orExit(eglInitialize(mDisplay, nullptr, nullptr), "eglInitialize");
    const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
    mContext = eglCreateContext(mDisplay, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, version);
    orExit(eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, mContext), "eglMakeCurrent");
    connectLibrary();
}

MesaContext::~MesaContext() {
    eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(mDisplay, mContext);
}

GLuint MesaContext::makeTexture(int width, int height) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, width, height);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    return texture;
}

GLuint MesaContext::makeTexture(const Picture& picture) {
    const GLuint texture = makeTexture(picture.width, picture.height);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, picture.width, picture.height, GL_RGBA, GL_UNSIGNED_BYTE,
                    picture.pixels.data());
    return texture;
}

Picture MesaContext::readTexture(GLuint texture, int width, int height) {
    Picture picture(width, height);
    GLint game = 0;
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &game);
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(game));
    glDeleteFramebuffers(1, &framebuffer);
    return picture;
}

ShaderPass::ShaderPass(const char* vertexShader, const char* fragmentShader, int width, int height)
    : mProgram(glCreateProgram()),
      mTarget(MesaContext::makeTexture(width, height)),
      mWidth(width),
      mHeight(height) {
    glAttachShader(mProgram, compile(GL_VERTEX_SHADER, vertexShader));
    glAttachShader(mProgram, compile(GL_FRAGMENT_SHADER, fragmentShader));
    glBindAttribLocation(mProgram, 0, "in_POSITION0");
    glLinkProgram(mProgram);
    glGenFramebuffers(1, &mFramebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, mFramebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, mTarget, 0);
    constexpr float kTriangle[] = {-1, -1, 0, 0, -1, 3, 0, 0, 3, -1, 0, 0};
    glGenBuffers(1, &mVertices);
    glBindBuffer(GL_ARRAY_BUFFER, mVertices);
    glBufferData(GL_ARRAY_BUFFER, sizeof kTriangle, kTriangle, GL_STATIC_DRAW);
}

GLint ShaderPass::uniform(const char* name) const {
    glUseProgram(mProgram);
    return glGetUniformLocation(mProgram, name);
}

void ShaderPass::draw(GLuint input) const {
    glBindFramebuffer(GL_FRAMEBUFFER, mFramebuffer);
    glViewport(0, 0, mWidth, mHeight);
    glUseProgram(mProgram);
    glBindTexture(GL_TEXTURE_2D, input);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, mVertices);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 0, nullptr);
    glDrawArrays(GL_TRIANGLES, 0, 3);
}
