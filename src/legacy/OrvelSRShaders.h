// The shaders of FSR 1's two passes, GLSL ES 3.00.
#pragma once

namespace android::orvel {

/** Input in_POSITION0; vs_TEXCOORD0 runs from 0 to 1 over the target. */
extern const char* const kFsrVertexShader;
/** Uniforms _EASUParameters[4], _OutputSize, _MainTex; see fsrEasuConstants(). */
extern const char* const kEasuShader;
/** Uniforms _RCASParameters (y: exp2(-sharpness)), _OutputSize, _MainTex, a texture of _OutputSize. */
extern const char* const kRcasShader;

} // namespace android::orvel
