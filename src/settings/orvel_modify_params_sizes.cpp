// Which sizes of render targets are replaced by which.
#include "base/OrvelLog.h"
#include "legacy/OrvelSRControl.h" // upwards: it knows which size was asked of the window's buffers
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"
#include "settings/orvel_modify_params.h"

#include <algorithm>
#include <iterator>

namespace android {

using com::velmor::ravelo::TEX_SIZE;
using com::velmor::ravelo::TYPE_ADAPT_SET;

constinit orvel::Relaxed<bool> mIsYuanshenPostprocessLow = false;
constinit orvel::OrvelTurns mPostprocessLowParamTurns;

namespace {

constexpr int kLoggedKind = 1; // a texture that is being allocated; for others, as at each viewport, no line is written

void logRewrite(int kind, const char* list, const TEX_SIZE& from, const TEX_SIZE& to) {
    ORVEL_LOGE_IF(orveldebug && kind == kLoggedKind, "orveldebug:modifyRenderPrecisionYuanshen%s, rf: %d*%d -> %d*%d",
                  list, from.width, from.height, to.width, to.height);
}

TEX_SIZE fullTarget() { return {mTargetTexWidthYuanshen, mTargetTexHeightYuanshen}; }
TEX_SIZE target80() { return {mTargetTexWidthYuanshen80, mTargetTexHeightYuanshen80}; }

// ---- the built-in list --------------------------------------------------------------------------------

enum class Rule {
    POSTPROCESS_LOW, // the game renders at a size that its upscaling was not made for: from now on this list is over
    SHRINK,          // to the target, if that is narrower
    GROW,            // to the target, if that is wider
};

struct BuiltInRule {
    Rule rule;
    TEX_SIZE sizes[5]; // those left out are 0, 0, which no rule may act on
};

// One group for each shape of screen. The rules apply one after the other, each to what those before it left.
constexpr BuiltInRule kBuiltInRules[] = {
    {Rule::POSTPROCESS_LOW, {{1296, 582}, {1152, 518}, {1024, 460}, {864, 388}, {777, 348}}},
    {Rule::SHRINK, {{1620, 728}, {1440, 648}, {1280, 576}, {1080, 486}, {972, 436}}},
    {Rule::GROW, {{1920, 864}, {1620, 728}, {1440, 648}}},

    {Rule::POSTPROCESS_LOW, {{1075, 672}, {810, 512}, {691, 432}}},
    {Rule::SHRINK, {{1344, 840}, {1024, 640}, {864, 540}}},
    {Rule::GROW, {{1344, 840}}},

    {Rule::POSTPROCESS_LOW, {{1296, 555}, {1024, 438}, {864, 369}, {777, 332}}},
    {Rule::SHRINK, {{1620, 694}, {1280, 548}, {1080, 462}, {972, 416}}},
};

void applyBuiltInList(TEX_SIZE& size, int kind) {
    for (const BuiltInRule& rule : kBuiltInRules) {
        if (mIsYuanshenPostprocessLow) {
            return;
        }
        if (size == TEX_SIZE{} ||
            std::find(std::begin(rule.sizes), std::end(rule.sizes), size) == std::end(rule.sizes)) {
            continue;
        }
        const TEX_SIZE target = fullTarget();
        if (rule.rule == Rule::POSTPROCESS_LOW) {
            ORVEL_LOGD_IF(orveldebug && kind == kLoggedKind, "yunshen postprocess low"); // spelt so
            mIsYuanshenPostprocessLow = true;                                            // for good
        } else if (rule.rule == Rule::SHRINK ? target.width < size.width : target.width > size.width) {
            logRewrite(kind, "", size, target);
            size = target;
        }
    }
}

// ---- the device's table -------------------------------------------------------------------------------

struct AdaptRule {
    TYPE_ADAPT_SET type;
    Rule rule;
    TEX_SIZE (*target)();
    const char* name;
};

constexpr AdaptRule kAdaptRules[] = {
    {com::velmor::ravelo::TEX_SIZE_POST_PROCESS_LOW, Rule::SHRINK, target80, " TEX_SIZE_POST_PROCESS_LOW"},
    {com::velmor::ravelo::TEX_SIZE_POST_PROCESS_HIGH, Rule::SHRINK, fullTarget, " TEX_SIZE_POST_PROCESS_HIGH"},
    {com::velmor::ravelo::TEX_SIZE_MAX_RESOLUTION, Rule::GROW, fullTarget, " TEX_SIZE_MAX_RESOLUTION"},
    {com::velmor::ravelo::TEX_SIZE_MAX_RESOLUTION_80P, Rule::GROW, target80, " TEX_SIZE_MAX_RESOLUTION_80P"},
};

/** The upscaling constants by which the game's own are recognised, if some were derived for that low width. */
void takeLowParams(int32_t lowWidth) {
    const auto params = mPostProcessLowParamsMap.find(lowWidth);
    if (params == mPostProcessLowParamsMap.end()) {
        return;
    }
    if (const orvel::OrvelTurn turn(mPostprocessLowParamTurns, orvel::OrvelTurn::ASK); turn) {
        mPostprocessLowParam = params->second; // into memory that start-up asked for
    }
}

/** @return whether a list of the table had the size; its rule then is the last */
bool applyDeviceTable(TEX_SIZE& size, int kind) {
    for (const AdaptRule& rule : kAdaptRules) {
        const TEX_SIZE target = rule.target();
        if (rule.rule == Rule::SHRINK ? target.width >= size.width : target.width <= size.width) {
            continue;
        }
        const auto list = mDeviceAdaptConfigMap.find(rule.type);
        if (list == mDeviceAdaptConfigMap.end() ||
            std::find(list->second.begin(), list->second.end(), size) == list->second.end()) {
            continue;
        }
        if (rule.type == com::velmor::ravelo::TEX_SIZE_POST_PROCESS_LOW) {
            takeLowParams(size.width);
        }
        logRewrite(kind, rule.name, size, target);
        size = target;
        return true;
    }
    return false;
}

// ---- the window's buffers -----------------------------------------------------------------------------

/** The game goes on drawing for the window's native size after the window's buffers were resized. */
void applyBackbufferSize(TEX_SIZE& size, int kind) {
    const auto* prefs = orvel::OrvelSettings::getInstance().mPrefs;
    if (!prefs || !prefs->mBackbufferSizeValid ||
        size != TEX_SIZE{prefs->mBackbufferSizes[0], prefs->mBackbufferSizes[1]}) {
        return;
    }
    const auto [width, height] = orvel::OrvelSRControl::getInstance().getTargetBackbufferSize();
    if (width < 1 || height < 1) {
        return; // none was asked for yet
    }
    ORVEL_LOGI_IF(orveldebug && kind == kLoggedKind, "BFSize: %dx%d -> %dx%d", size.width, size.height, width, height);
    size = {width, height};
}

} // namespace

void modifyRenderPrecisionYuanshen(int& w, int& h, int kind) {
    TEX_SIZE size{w, h};
    bool isDecided = false;
    if (mEnableScaleResolutionSize) {
        if (mDeviceAdaptConfigMap.empty()) {
            applyBuiltInList(size, kind);
        } else {
            isDecided = applyDeviceTable(size, kind);
        }
    }
    if (!isDecided) {
        applyBackbufferSize(size, kind);
    }
    w = size.width;
    h = size.height;
}

} // namespace android
