#include "legacy/OrvelSR.h"

#include "base/FsrConstants.h"
#include "base/OrvelLog.h"
#include "legacy/GlObjects.h"
#include "legacy/OrvelSRShaders.h"
#include "next/OrvelNext.h"

namespace android::orvel {

namespace {

constexpr GLuint kPosition = 0; // attribute

/** Of a texture that a pass writes and the next one, or the game, samples. */
constexpr TextureParameter kTargetParameters[] = {
    {GL_TEXTURE_BASE_LEVEL, 0},
    {GL_TEXTURE_MAX_LEVEL, 0},
    {GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE},
    {GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE},
    {GL_TEXTURE_WRAP_R, GL_CLAMP_TO_EDGE},
    {GL_TEXTURE_MIN_FILTER, GL_NEAREST}, // deliberately one after the other
    {GL_TEXTURE_MAG_FILTER, GL_NEAREST},
    {GL_TEXTURE_MIN_FILTER, GL_LINEAR},
    {GL_TEXTURE_MAG_FILTER, GL_LINEAR},
    {GL_TEXTURE_MAX_ANISOTROPY_EXT, 1},
    {GL_TEXTURE_SRGB_DECODE_EXT, GL_DECODE_EXT},
};

GLuint makeShader(GLenum type, const char* source) {
    const GLuint shader = next::gl.glCreateShader(type);
    next::gl.glShaderSource(shader, 1, &source, nullptr);
    next::gl.glCompileShader(shader);
    return shader;
}

GLuint makeProgram(GLuint vertexShader, GLuint fragmentShader, const char* label) {
    const GLuint program = next::gl.glCreateProgram();
    next::gl.glAttachShader(program, vertexShader);
    next::gl.glAttachShader(program, fragmentShader);
    next::gl.glBindAttribLocation(program, kPosition, "in_POSITION0");
    next::gl.glLinkProgram(program);
    next::gl.glLabelObjectEXT(GL_PROGRAM_OBJECT_EXT, program, 0, label);
    return program;
}

/** Both stay bound. */
void makeVertices(const std::array<float, 12>& vertices, GLuint& vertexArray, GLuint& buffer) {
    next::gl.glGenVertexArrays(1, &vertexArray);
    next::gl.glBindVertexArray(vertexArray);
    next::gl.glGenBuffers(1, &buffer);
    next::gl.glBindBuffer(GL_ARRAY_BUFFER, buffer);
    next::gl.glBufferData(GL_ARRAY_BUFFER, sizeof vertices, vertices.data(), GL_STATIC_DRAW);
    next::gl.glEnableVertexAttribArray(kPosition);
    next::gl.glVertexAttribPointer(kPosition, 4, GL_FLOAT, GL_FALSE, 4 * sizeof(float), nullptr);
}

} // namespace

OrvelSR::OrvelSR()
    : mFSREASUParam(fsrEasuConstants(1620, 728, 2712, 1220)),
      mVertexShaderSource(kFsrVertexShader),
      mEASUShaderSource(kEasuShader),
      mRCASShaderSource(kRcasShader) {}

void OrvelSR::initFSRParams(int inputWidth, int inputHeight, int outputWidth, int outputHeight) {
    mFSREASUParam = fsrEasuConstants(inputWidth, inputHeight, outputWidth, outputHeight);
    for (size_t i = 0; i < mFSREASUParam.size(); ++i) {
        ORVEL_LOGD("SuperResolution SR mFSREASUParam[%d] = %f", static_cast<int>(i),
                   static_cast<double>(mFSREASUParam[i]));
    }
}

uint32_t OrvelSR::fsr(uint32_t texture, int inputWidth, int inputHeight, int outputWidth, int outputHeight) {
    if (!mInited) {
        initFSRParams(inputWidth, inputHeight, outputWidth, outputHeight);
        mInited = true;
    }
    const GLuint outputSize[] = {static_cast<GLuint>(outputWidth), static_cast<GLuint>(outputHeight)};

    prepareEasu(outputWidth, outputHeight);
    next::gl.glBindTexture(GL_TEXTURE_2D, texture);
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, mEASUFramebuffer);
    next::gl.glViewport(0, 0, outputWidth, outputHeight);
    next::gl.glScissor(0, 0, outputWidth, outputHeight);
    next::gl.glUseProgram(mEASUProgram);
    next::gl.glBindVertexArray(mEASUVertexArray);
    next::gl.glUniform2uiv(mEASUOutputSize, 1, outputSize);
    next::gl.glUniform4fv(mEASUParameters, 4, mFSREASUParam.data());
    next::gl.glDrawArrays(GL_TRIANGLES, 0, 3);

    prepareRcas(outputWidth, outputHeight);
    next::gl.glBindTexture(GL_TEXTURE_2D, mEASUTexture);
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, mRCASFramebuffer);
    next::gl.glUseProgram(mRCASProgram);
    next::gl.glBindVertexArray(mRCASVertexArray);
    next::gl.glUniform2uiv(mRCASOutputSize, 1, outputSize);
    next::gl.glUniform4fv(mRCASParameters, 1, mFSRRCASParam.data());
    next::gl.glDrawArrays(GL_TRIANGLES, 0, 3);
    return mRCASTexture;
}

void OrvelSR::prepareEasu(int width, int height) {
    if (mEASUTexture == kNone) {
        mEASUTexture = makeTexture(width, height, kTargetParameters);
    }
    if (mEASUFramebuffer == kNone) {
        mEASUFramebuffer = makeDrawFramebuffer(mEASUTexture);
    }
    if (mVertexShader == kNone) {
        mVertexShader = makeShader(GL_VERTEX_SHADER, mVertexShaderSource);
    }
    if (mEASUFragmentShader == kNone) {
        mEASUFragmentShader = makeShader(GL_FRAGMENT_SHADER, mEASUShaderSource);
    }
    if (mEASUProgram == kNone) {
        mEASUProgram = makeProgram(mVertexShader, mEASUFragmentShader, "FSREASU");
        mEASUOutputSize = next::gl.glGetUniformLocation(mEASUProgram, "_OutputSize");
        mEASUParameters = next::gl.glGetUniformLocation(mEASUProgram, "_EASUParameters");
        makeVertices(mVertices, mEASUVertexArray, mEASUVertexBuffer);
    }
}

void OrvelSR::prepareRcas(int width, int height) {
    if (mRCASTexture == kNone) {
        mRCASTexture = makeTexture(width, height, kTargetParameters);
    }
    if (mRCASFramebuffer == kNone) {
        mRCASFramebuffer = makeDrawFramebuffer(mRCASTexture);
    }
    if (mRCASFragmentShader == kNone) {
        mRCASFragmentShader = makeShader(GL_FRAGMENT_SHADER, mRCASShaderSource);
    }
    if (mRCASProgram == kNone) {
        mRCASProgram = makeProgram(mVertexShader, mRCASFragmentShader, "FSRRCAS");
        mRCASOutputSize = next::gl.glGetUniformLocation(mRCASProgram, "_OutputSize");
        mRCASParameters = next::gl.glGetUniformLocation(mRCASProgram, "_RCASParameters");
        makeVertices(mVertices, mRCASVertexArray, mRCASVertexBuffer);
    }
}

} // namespace android::orvel
