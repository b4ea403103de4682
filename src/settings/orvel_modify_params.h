// What the legacy features of this process are set to. Plain variables: their hooks run on every draw and read nothing
// else. Written by initGameSetting(), first before any hook is installed, and by the feature named. Known by names that
// begin with m, though they are no members: one of each for the process.
#pragma once

#include "base/OrvelTurn.h"
#include "base/Relaxed.h"
#include "settings/OrvelTexSize.h"

#include <utils/StrongPointer.h>

#include <cstdint>
#include <map>
#include <vector>

namespace android {

namespace orvel {
class OrvelDRR;
}
class SceneRecognizer;

/** The minimaps by which Hkrpg's scenes are told apart. */
enum HKRPG_SCENE : int32_t {
    HKRPG_SCENE_NONE = 0,
    HKRPG_SCENE_CITY = 1,
    HKRPG_SCENE_X2 = 2,
    HKRPG_SCENE_X21 = 3,
    HKRPG_SCENE_SQUARE = 4,
};

#pragma GCC visibility push(hidden) // for the compiler: no detour through the global offset table on the draw path

extern bool orveldebug; // verbose logging

extern bool mEnableScaleResolutionSize;
extern int32_t mTargetTexWidthYuanshen;
extern int32_t mTargetTexHeightYuanshen;
extern float mTargetTexWidthYuanshenReciprocal;
extern float mTargetTexHeightYuanshenReciprocal;
extern int32_t mTargetTexWidthYuanshen80;
extern int32_t mTargetTexHeightYuanshen80;

extern bool mEnableShadingRate;
extern int32_t mShadingRate;
extern bool mEnableAFModify;
extern int32_t mTargetAFValue;

// References where there is memory to free: hooks may still read it while the process ends.
extern std::map<com::velmor::ravelo::TYPE_ADAPT_SET, std::vector<com::velmor::ravelo::TEX_SIZE>>& mDeviceAdaptConfigMap;
extern std::map<int32_t, std::vector<float>>& mPostProcessLowParamsMap; // low width to 16 upscaling constants
extern std::vector<float>& mPostprocessLowParam;                        // the entry in use; written by the size rules
extern orvel::OrvelTurns mPostprocessLowParamTurns;                     // guards it: loading threads state sizes, too
extern orvel::Relaxed<bool> mIsYuanshenPostprocessLow;                  // for good; written by the size rules
extern com::velmor::ravelo::TEX_SIZE mGameSCSize;                       // size of the game's screenshots
extern int32_t mShaderReplaceValue;

extern bool mEnableYSSceneRecognize;
extern bool mEnableYSTransferRecognize;
extern bool mEnableYSLaunchRecognize;
extern bool mEnableHkrpgSceneRecognize;
extern bool mEnableHPTransferRecognize;
extern sp<SceneRecognizer>& mSceneRecognizer;                  // null unless one of the five is on
extern std::map<HKRPG_SCENE, int32_t>& mHkrpeMinmapTextureMap; // spelt so; texture names, written by recognition

// Cleared for good by the thread that meets an illegal size, read by every hook.
extern orvel::Relaxed<bool> mEnableDynamicResolution;
extern orvel::OrvelDRR* mOrvelDRR; // never freed
extern int32_t mDFIInterval;       // milliseconds, -1 off; rewritten by the frame-interval feature

#pragma GCC visibility pop

/**
 * Identifies the process, asks the tuning service, fills the variables above and creates the feature objects that the
 * answer asks for. Called for each createInstance, on the loader's initialising thread; a later call refreshes the
 * variables and creates no object a second time. Without preferences everything taken from them is 0 or false,
 * but for mDFIInterval (-1) and mEnableDynamicResolution (left alone).
 */
void initGameSetting();

// Changes of GL parameters, called by the hooks. Sizes: orvel_modify_params_sizes.cpp, the others:
// orvel_modify_params_gl.cpp.

/** Sets the configured rate through whichever extension the driver has. */
void setShadingRate();
/** Before each draw. */
inline void modifyShadingRate() {
    if (mEnableShadingRate) {
        setShadingRate();
    }
}

/** Caps the value when pname is the texture's anisotropy. */
void modifyAFValuePubg(unsigned pname, int& value);

/**
 * Replaces the size of a render target, by the games' known sizes and, in any legacy process, by the size asked of the
 * window's buffers.
 * @param kind which call it comes from; log lines are written for 1 only
 */
void modifyRenderPrecisionYuanshen(int& w, int& h, int kind);
/** Rewrites a screen-size uniform. @param v 4 * count floats */
void modifyRenderPrecisionYuanshenShaderUniform(int count, float* v);

/** @return whether modifyPostprocessLowParam has work */
bool fixPostprocessLowIssue();
/** Rewrites the upscaling constants that the game made for its low size. @param v 16 floats */
void modifyPostprocessLowParam(float* v);
/** @return whether there are n values, each within 1e-6 of the array's */
bool compareFloatArr(const std::vector<float>& values, const float* array, int n);

} // namespace android
