// Recognises scenes of a game from what it draws and reports them to the tuning service.
#pragma once

#include "settings/orvel_modify_params.h"

#include <cstdint>
#include <utils/Thread.h>

namespace android {

/** Counts characteristic sequences of draws, texture sizes and labels; a thread of its own reports every 2 s. */
class SceneRecognizer : public Thread {
public:
    SceneRecognizer() : Thread(/*canCallJava=*/false) {}

    virtual void updateTexSizeArr(int32_t width, int32_t height);
    virtual void updateEleCountArr(const int& count);
    virtual void checkBossPattern();
    virtual void checkTransferPattern(const int& count);
    virtual void checkLaunchPattern(const int& count);
    virtual void recognizeHkrpgScene(int32_t scene);
    virtual void checkTransferPatternHP(const int& count);
    virtual void startThread();
    virtual void stopThread();
    virtual int32_t sendSceneIdToRavelo(int32_t sceneId);

private:
    bool threadLoop() override;
};

// What the hooks call. Each does nothing unless its switch is on and the recogniser exists; the test stands here so
// that a process without recognition pays one load for it. A count of 0 marks a clear or an invalidation.

void queryTexSizeArr();

/** Before a bind: records the size of the texture that was bound until now, so the history lags one bind behind. */
inline void updateTexSizeArr() {
    if (mEnableYSSceneRecognize && mSceneRecognizer) {
        queryTexSizeArr();
    }
}

inline void checkBossPattern() {
    if (mEnableYSSceneRecognize && mSceneRecognizer) {
        mSceneRecognizer->checkBossPattern();
    }
}

inline void updateEleCountArr(const int& count) {
    if (mEnableYSSceneRecognize && mSceneRecognizer) {
        mSceneRecognizer->updateEleCountArr(count);
    }
}

inline void checkTransferPattern(const int& count) {
    if (mEnableYSTransferRecognize && mSceneRecognizer) {
        mSceneRecognizer->checkTransferPattern(count);
    }
}

inline void checkLaunchPattern(const int& count) {
    if (mEnableYSLaunchRecognize && mSceneRecognizer) {
        mSceneRecognizer->checkLaunchPattern(count);
    }
}

inline void checkTransferPatternHP(const int& count) {
    if (mEnableHPTransferRecognize && mSceneRecognizer) {
        mSceneRecognizer->checkTransferPatternHP(count);
    }
}

/** Remembers textures that carry one of the labels of Hkrpg's minimap and avatar icon. */
void markLabelledHkrpgTexture(unsigned& name, const char* label);
inline void markHkrpgTexture(unsigned& name, const char* label) {
    if (mEnableHkrpgSceneRecognize && mSceneRecognizer) {
        markLabelledHkrpgTexture(name, label);
    }
}

/** Takes the scene of a minimap texture that is being bound. */
void recognizeBoundHkrpgTexture(unsigned& tex);
inline void recognizeHkrpgTexture(unsigned& tex) {
    if (mEnableHkrpgSceneRecognize && mSceneRecognizer) {
        recognizeBoundHkrpgTexture(tex);
    }
}

/** Once per frame: reports the scene whose minimap was bound together with the avatar icon. */
void recognizeHkrpgFrame();
inline void recognizeHkrpgScene() {
    if (mEnableHkrpgSceneRecognize && mSceneRecognizer) {
        recognizeHkrpgFrame();
    }
}

} // namespace android
