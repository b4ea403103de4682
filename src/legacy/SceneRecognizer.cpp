// What is rare in the game's calls. Every draw's part: in the header. The thread that reports: SceneReport.cpp.
#include "legacy/SceneRecognizer.h"

#include "base/OrvelLog.h"
#include "next/OrvelNext.h"

namespace android {

void SceneRecognizer::updateTexSizeArr(int32_t width, int32_t height) {
    mTexSizeArr[0] = int32_t{mTexSizeArr[2]};
    mTexSizeArr[1] = int32_t{mTexSizeArr[3]};
    mTexSizeArr[2] = width;
    mTexSizeArr[3] = height;
}

void SceneRecognizer::recognizeHkrpgScene(int32_t scene) {
    constexpr SceneId kIds[] = {SCENE_ORDINARY, SCENE_HKRPG_CITY, SCENE_HKRPG_X2, SCENE_HKRPG_X21, SCENE_HKRPG_SQUARE};
    if (0 <= scene && scene < static_cast<int32_t>(std::size(kIds))) {
        mHkrpgSceneId = kIds[scene];
    }
    increment(mHkrpgSceneCount);
}

void SceneRecognizer::countTransfer(const char* recogniser) {
    ORVEL_LOGI("%s transferring: %d!", recogniser, int32_t{mTransferCount});
    increment(mTransferCount);
}

void SceneRecognizer::countLaunch() {
    ORVEL_LOGI("checkLaunchPattern launching: %d!", int32_t{mLaunchCount});
    increment(mLaunchCount);
}

void queryTexSizeArr() {
    GLint width = 0; // stay so in contexts that do not know the query
    GLint height = 0;
    orvel::next::gl.glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    orvel::next::gl.glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
    mSceneRecognizer->updateTexSizeArr(width, height);
}

} // namespace android
