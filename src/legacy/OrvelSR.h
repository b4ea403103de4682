// FidelityFX Super Resolution 1: upscales a texture (EASU), then sharpens it (RCAS).
#pragma once

#include <array>
#include <cstdint>

namespace android::orvel {

/** Owns the GL objects of both passes; they are made once, on first need, and live as long as the game's context. */
class OrvelSR {
public:
    static constexpr uint32_t kNone = ~0u;

    OrvelSR();

    /**
     * Computes the constants of the upscaling pass; each is logged.
     * @param inputWidth, inputHeight   texels of the texture to be upscaled
     * @param outputWidth, outputHeight texels of the result
     */
    void initFSRParams(int inputWidth, int inputHeight, int outputWidth, int outputHeight);

    /**
     * Upscales and sharpens a texture on the current context. Leaves its own viewport, scissor box, draw framebuffer,
     * program, vertex array, array buffer and texture of the active unit behind; blending, masks and tests are the
     * game's. (The array buffer changes only in the call that makes the objects.) Constants and target sizes are those
     * of the first call. The passes sample texture unit 0.
     * @return the name of the texture that holds the result, outputWidth x outputHeight
     */
    uint32_t fsr(uint32_t texture, int inputWidth, int inputHeight, int outputWidth, int outputHeight);

private:
    void prepareEasu(int width, int height);
    void prepareRcas(int width, int height);

    bool mInited = false;
    uint32_t mEASUFramebuffer = kNone;
    uint32_t mRCASFramebuffer = kNone;
    uint32_t mEASUTexture = kNone;
    uint32_t mRCASTexture = kNone;
    uint32_t mEASUProgram = kNone;
    uint32_t mRCASProgram = kNone;
    uint32_t mVertexShader = kNone;
    uint32_t mEASUFragmentShader = kNone;
    uint32_t mRCASFragmentShader = kNone;
    std::array<float, 16> mFSREASUParam;                      // four vec4
    std::array<float, 4> mFSRRCASParam{0.5f, 0.70711f, 0, 0}; // sharpness in stops, exp2(-sharpness)
    uint32_t mEASUVertexBuffer = 0;
    uint32_t mRCASVertexBuffer = 0;
    uint32_t mEASUVertexArray = 0;
    uint32_t mRCASVertexArray = 0;
    std::array<float, 12> mVertices{-1, -1, 0, 0, -1, 3, 0, 0, 3, -1, 0, 0}; // one triangle that covers the target
    // Texts of the three shaders, see OrvelSRShaders.cpp.
    const char* mVertexShaderSource;
    const char* mEASUShaderSource;
    const char* mRCASShaderSource;
    // Where the programs keep their uniforms.
    int mEASUOutputSize = -1;
    int mEASUParameters = -1;
    int mRCASOutputSize = -1;
    int mRCASParameters = -1;
};

} // namespace android::orvel
