#include "legacy/OrvelSRControl.h"

#include "base/OrvelGuard.h"
#include "base/OrvelLog.h"
#include "legacy/OrvelBackbufferControl.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <cstring>

namespace android::orvel {

OrvelSRControl& OrvelSRControl::getInstance() {
    // never destroyed: hooks may still run while the process ends
    static auto& instance = *new OrvelSRControl;
    return instance;
}

void OrvelSRControl::initSuperResolutionConfig() {
    com::velmor::ravelo::TEX_SIZE base{0, 0};
    com::velmor::ravelo::TEX_SIZE target{0, 0};
    if (const auto* prefs = OrvelSettings::getInstance().mPrefs) {
        base = prefs->mSRSizes[0];
        target = prefs->mSRSizes[1];
    }
    mBaseSRWidthSize = base.width;
    mBaseSRHeightSize = base.height;
    mTargetSRWidthSize = target.width;
    mTargetSRHeightSize = target.height;
    sConfigured =
        mBaseSRWidthSize >= 1 && mBaseSRHeightSize >= 1 && mTargetSRWidthSize >= 1 && mTargetSRHeightSize >= 1;
    ORVEL_LOGD("SuperResolution SR initSR mBaseSRWidthSize: %d, mBaseSRHeightSize: %d, mTargetSRWidthSize: %d, "
               "mTargetSRHeightSize: %d",
               mBaseSRWidthSize, mBaseSRHeightSize, mTargetSRWidthSize, mTargetSRHeightSize);
}

// ---- the switch ---------------------------------------------------------------------------------------

void OrvelSRControl::doGameSuperResolution() {
    if (isConfigured() && mPackageName.empty()) {
        guarded("super resolution", [&] { readSwitchOnce(); });
    }
    if (mFile.wasWritten()) {
        updateGameSRConfig();
    }
}

void OrvelSRControl::readSwitchOnce() {
    mPackageName = OrvelSettings::getInstance().mPackageName.string();
    updateGameSRConfig();
    if (mSwitchStatusSR >= 0) {
        ORVEL_LOGI("Support SuperResolution SR.");
        mSupportSR = true;
        mFile.watch();
    }
}

void OrvelSRControl::updateGameSRConfig() {
    constexpr int32_t kUnreadable = -1;
    mSwitchStatusSR = mFile.read(mPackageName).value_or(kUnreadable);
    ORVEL_LOGI("SuperResolution SR mSwitchStatusSR:%d", int32_t{mSwitchStatusSR});
    updateBackbufferSize();
}

void OrvelSRControl::updateBackbufferSize() {
    const auto* prefs = OrvelSettings::getInstance().mPrefs;
    if (!prefs || !prefs->mBackbufferSizeValid) {
        return;
    }
    const auto& sizes = prefs->mBackbufferSizes;
    const bool on = mSwitchStatusSR == 1;
    ORVEL_LOGD("mBFSizeConfig SR %s", on ? "ON" : "OFF");
    const int32_t width = on ? sizes[6] : sizes[4];
    const int32_t height = on ? sizes[7] : sizes[5];
    mTargetBackbufferSize.width = width;
    mTargetBackbufferSize.height = height;
    sBackbufferSizeAsked = width >= 1 && height >= 1;
    if (OrvelBackbufferControl::getInstance().setANWBuffersGeometry(width, height)) {
        next::gl.glViewport(0, 0, width, height);
        next::gl.glScissor(0, 0, width, height);
    }
}

// ---- the substitution ---------------------------------------------------------------------------------

void OrvelSRControl::recordFSRProgramByProgramLabel(unsigned type, unsigned name, const char* label) {
    if (isConfigured() && type == GL_PROGRAM_OBJECT_EXT && std::strcmp(label, "Hidden/PostProcessing/Copy") == 0) {
        if (const OrvelTurn turn(mTurns, OrvelTurn::WAIT); turn) {
            guarded("super resolution", [&] { mFSRPrograms.insert(name); });
        }
    }
}

void OrvelSRControl::hookForPostprocess() {
    if (!isConfigured() || mSwitchStatusSR != 1) {
        return;
    }
    // A query that fails leaves these values; those that decide fit no final copy.
    GLint program = 0;
    next::gl.glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    if (const OrvelLook look(mTurns); !look || !mFSRPrograms.contains(static_cast<uint32_t>(program))) {
        return;
    }
    GLint texture = -1;
    GLint drawFramebuffer = -1;
    GLint readFramebuffer = -1;
    GLint arrayBuffer = 0;
    GLint elementBuffer = 0;
    GLint viewport[4] = {};
    GLint scissor[4] = {};
    GLint width = 0;
    GLint height = 0;
    next::gl.glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
    next::gl.glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &drawFramebuffer);
    next::gl.glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &readFramebuffer);
    next::gl.glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &arrayBuffer);
    next::gl.glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &elementBuffer);
    next::gl.glGetIntegerv(GL_VIEWPORT, viewport);
    next::gl.glGetIntegerv(GL_SCISSOR_BOX, scissor);
    next::gl.glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    next::gl.glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
    if (drawFramebuffer != 0 || width != mBaseSRWidthSize || height != mBaseSRHeightSize) {
        return;
    }
    const uint32_t result =
        mSR.fsr(static_cast<uint32_t>(texture), width, height, mTargetSRWidthSize, mTargetSRHeightSize);
    if (result != OrvelSR::kNone) {
        next::gl.glBindTexture(GL_TEXTURE_2D, result); // stays bound: the game's draw samples it
    }
    next::gl.glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    next::gl.glScissor(scissor[0], scissor[1], scissor[2], scissor[3]);
    next::gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(drawFramebuffer));
    next::gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(readFramebuffer));
    next::gl.glUseProgram(static_cast<GLuint>(program));
    // Deliberate: the games' final copy draws with a vertex array of the array buffer's name, 0 as a rule.
    next::gl.glBindVertexArray(static_cast<GLuint>(arrayBuffer));
    next::gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLuint>(elementBuffer));
}

} // namespace android::orvel
