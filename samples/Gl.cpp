#include "Gl.h"

#include <EGL/egl.h>
#include <GLES2/gl2ext.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace sample {

namespace {

GLuint compile(const char* label, GLenum type, const std::string& text) {
    const GLuint shader = glCreateShader(type);
    const GLchar* string = text.c_str();
    glShaderSource(shader, 1, &string, nullptr);
    glCompileShader(shader);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (!compiled) {
        GLchar message[2048] = "";
        glGetShaderInfoLog(shader, sizeof(message), nullptr, message);
        fail("a shader of \"%s\" does not compile: %s", label, message);
    }
    return shader;
}

} // namespace

void fail(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::fputs("orvel-sample: ", stderr);
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
    va_end(arguments);
    std::exit(1);
}

void labelObject(GLenum type, GLuint object, const char* label) {
    static const auto glLabelObject = reinterpret_cast<PFNGLLABELOBJECTEXTPROC>(eglGetProcAddress("glLabelObjectEXT"));
    if (glLabelObject) {
        glLabelObject(type, object, 0, label);
    }
}

bool hasExtension(const char* name) {
    GLint count = 0;
    glGetIntegerv(GL_NUM_EXTENSIONS, &count);
    for (GLint i = 0; i < count; ++i) {
        if (std::strcmp(reinterpret_cast<const char*>(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i))), name) ==
            0) {
            return true;
        }
    }
    return false;
}

GLuint makeTexture(const char* label, GLenum format, Size size, GLint levels, GLint filter) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexStorage2D(GL_TEXTURE_2D, levels, format, size.width, size.height);
    GLint immutable = GL_FALSE;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_IMMUTABLE_FORMAT, &immutable);
    if (!immutable) {
        fail("no texture \"%s\" of %dx%d in format 0x%04x", label, size.width, size.height, format);
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter == GL_NEAREST ? GL_NEAREST : GL_LINEAR);
    const GLint wrap = levels > 1 ? GL_REPEAT : GL_CLAMP_TO_EDGE;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
    labelObject(GL_TEXTURE, texture, label);
    return texture;
}

Program::Program(const char* label, const std::string& vertex, const std::string& fragment) : mName(glCreateProgram()) {
    const GLuint shaders[] = {compile(label, GL_VERTEX_SHADER, vertex), compile(label, GL_FRAGMENT_SHADER, fragment)};
    for (const GLuint shader : shaders) {
        glAttachShader(mName, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(mName);
    GLint linked = GL_FALSE;
    glGetProgramiv(mName, GL_LINK_STATUS, &linked);
    if (!linked) {
        GLchar message[2048] = "";
        glGetProgramInfoLog(mName, sizeof(message), nullptr, message);
        fail("program \"%s\" does not link: %s", label, message);
    }
    labelObject(GL_PROGRAM_OBJECT_EXT, mName, label);
}

void Program::setScreen(const char* uniform, Size size) const {
    const auto w = static_cast<float>(size.width);
    const auto h = static_cast<float>(size.height);
    const GLfloat value[] = {w, h, 1 + 1 / w, 1 + 1 / h};
    glUniform4fv(at(uniform), 1, value);
}

void Program::setTexel(const char* uniform, Size size) const {
    const auto w = static_cast<float>(size.width);
    const auto h = static_cast<float>(size.height);
    const GLfloat value[] = {1 / w, 1 / h, w, h};
    glUniform4fv(at(uniform), 1, value);
}

} // namespace sample
