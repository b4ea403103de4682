#include "next/OrvelVisualProgram.h"

#include "base/OrvelLog.h"
#include "next/OrvelNext.h"

namespace android::orvel::next {

namespace {

GLuint compile(GLenum type, const std::string& source) {
    const GLuint shader = gl.glCreateShader(type);
    const char* text = source.c_str();
    gl.glShaderSource(shader, 1, &text, nullptr);
    gl.glCompileShader(shader);
    return shader;
}

bool isCompiled(GLuint shader) {
    GLint status = 0;
    gl.glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    return status != 0;
}

bool isLinked(GLuint program) {
    GLint status = 0;
    gl.glGetProgramiv(program, GL_LINK_STATUS, &status);
    return status != 0;
}

} // namespace

OrvelVisualProgram::~OrvelVisualProgram() { Delete(); }

void OrvelVisualProgram::Delete() {
    if (mProgram != 0) {
        gl.glDeleteProgram(mProgram);
    }
    Abandon();
}

void OrvelVisualProgram::Abandon() {
    mProgram = 0;
    mValid = false;
}

void OrvelVisualProgram::CreateFromShaderSource(const std::string& vertexSource, const std::string& fragmentSource) {
    Delete();
    const GLuint vertexShader = compile(GL_VERTEX_SHADER, vertexSource);
    const GLuint fragmentShader = compile(GL_FRAGMENT_SHADER, fragmentSource);
    // Deliberate: a failure deletes the shader that failed and leaves the other one.
    if (!isCompiled(vertexShader)) {
        gl.glDeleteShader(vertexShader);
        ORVEL_LOGD("vcf");
        return;
    }
    if (!isCompiled(fragmentShader)) {
        gl.glDeleteShader(fragmentShader);
        ORVEL_LOGD("fcf");
        return;
    }
    mProgram = gl.glCreateProgram();
    gl.glAttachShader(mProgram, vertexShader);
    gl.glAttachShader(mProgram, fragmentShader);
    gl.glLinkProgram(mProgram);
    const bool linked = isLinked(mProgram);
    gl.glDetachShader(mProgram, vertexShader);
    gl.glDetachShader(mProgram, fragmentShader);
    gl.glDeleteShader(vertexShader);
    gl.glDeleteShader(fragmentShader);
    if (!linked) {
        Delete();
        ORVEL_LOGD("pcf");
        return;
    }
    ResetHandle(mProgram);
    mValid = true;
}

bool OrvelVisualProgram::CreateFromBinarySource(void* binary, GLenum binaryFormat, GLsizei length) {
    Delete();
    mProgram = gl.glCreateProgram();
    gl.glProgramParameteri(mProgram, GL_PROGRAM_BINARY_RETRIEVABLE_HINT, GL_TRUE);
    gl.glProgramBinary(mProgram, binaryFormat, binary, length);
    if (!isLinked(mProgram)) {
        ORVEL_LOGD("bpcf");
        Delete();
        return false;
    }
    ResetHandle(mProgram);
    mValid = true;
    return true;
}

GLint OrvelVisualProgram::GetUniformLocation(const std::string& name) const {
    return mValid ? OrvelProgramReflector::GetUniformLocation(name) : -1;
}

void OrvelVisualProgram::Use() const {
    if (mValid) {
        gl.glUseProgram(mProgram);
    }
}

void OrvelVisualProgram::UnUse() const { gl.glUseProgram(0); }

} // namespace android::orvel::next
