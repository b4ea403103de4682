// Changes of single GL parameters: shading rate, anisotropy, uniforms that carry a size or the constants made from one.
#include "base/OrvelLog.h"
#include "base/ScreenSizeUniform.h"
#include "base/ShadingRateEnums.h"
#include "next/OrvelNext.h"
#include "settings/orvel_modify_params.h"

#include <GLES2/gl2ext.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace android {

namespace next = orvel::next;

void setShadingRate() {
    // By the configured number less one. The values are the same for both extensions.
    constexpr GLenum kRates[] = {GL_SHADING_RATE_1X2_PIXELS_EXT, GL_SHADING_RATE_2X1_PIXELS_EXT,
                                 GL_SHADING_RATE_2X2_PIXELS_EXT, GL_SHADING_RATE_4X2_PIXELS_EXT,
                                 GL_SHADING_RATE_4X4_PIXELS_EXT};
    const auto shadingRate = next::ext.glShadingRateEXT ? next::ext.glShadingRateEXT : next::ext.glShadingRateQCOM;
    if (!shadingRate || mShadingRate < 1) {
        return;
    }
    if (mShadingRate <= static_cast<int32_t>(std::size(kRates))) {
        shadingRate(kRates[mShadingRate - 1]);
    } else {
        ORVEL_LOGE("orvel:undefined shading rate"); // deliberately at every draw
    }
    ORVEL_LOGE_IF(orveldebug, "orveldebug:modifyShadingRate, mShadingRate: %d", mShadingRate);
}

void modifyAFValuePubg(unsigned pname, int& value) {
    if (pname != GL_TEXTURE_MAX_ANISOTROPY_EXT || !mEnableAFModify || value <= mTargetAFValue) {
        return;
    }
    ORVEL_LOGE_IF(orveldebug, "orveldebug:modifyAFValuePubg, af: %d -> %d", value, mTargetAFValue);
    value = mTargetAFValue;
}

void modifyRenderPrecisionYuanshenShaderUniform(int count, float* v) {
    constexpr int kUniformKind = 3;
    if (count != 1 || !mEnableScaleResolutionSize) {
        return;
    }
    const float old[] = {v[0], v[1], v[2], v[3]};
    const bool rewritten =
        orvel::rewriteScreenSizeUniform(v, [](int& w, int& h) { modifyRenderPrecisionYuanshen(w, h, kUniformKind); });
    ORVEL_LOGE_IF(rewritten && orveldebug,
                  "orveldebug:modifyRenderPrecisionYuanshenShaderUniform, su: [%f, %f, %f, %f] -> [%f, %f, %f, %f]",
                  double{old[0]}, double{old[1]}, double{old[2]}, double{old[3]}, double{v[0]}, double{v[1]},
                  double{v[2]}, double{v[3]});
}

// ---- upscaling constants ------------------------------------------------------------------------------

bool compareFloatArr(const std::vector<float>& values, const float* array, int n) {
    constexpr double kTolerance = 1e-6;
    return values.size() == static_cast<size_t>(n) &&
           std::equal(values.begin(), values.end(), array, [](float a, float b) {
               return std::abs(double{a} - double{b}) <= kTolerance; // not so for what is no number
           });
}

bool fixPostprocessLowIssue() {
    if (!mEnableScaleResolutionSize) {
        return false;
    }
    const orvel::OrvelLook look(mPostprocessLowParamTurns);
    return look && !mPostprocessLowParam.empty();
}

void modifyPostprocessLowParam(float* v) {
    if (!mEnableScaleResolutionSize) {
        return;
    }
    if (const orvel::OrvelLook look(mPostprocessLowParamTurns);
        !look || !compareFloatArr(mPostprocessLowParam, v, 16)) {
        return;
    }
    // What the game would have computed for an input of 0.8 times the target. The exact ratio, not that of the sizes in
    // whole texels: the game's passes go by the ratio.
    const float rW = mTargetTexWidthYuanshenReciprocal;
    const float rH = mTargetTexHeightYuanshenReciprocal;
    const float constants[16] = {
        0.8f,        0.8f,       -0.1f,      -0.1f,       //
        1.25f * rW,  1.25f * rH, 1.25f * rW, -1.25f * rH, //
        -1.25f * rW, 2.5f * rH,  1.25f * rW, 2.5f * rH,   //
        0.0f,        5.0f * rH,  0.8f,       0.8f,
    };
    std::copy(std::begin(constants), std::end(constants), v);
    ORVEL_LOGD_IF(orveldebug, "modifyPostprocessLowParam");
}

} // namespace android
