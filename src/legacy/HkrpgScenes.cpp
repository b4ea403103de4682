#include "legacy/HkrpgScenes.h"

#include "base/OrvelGuard.h"
#include "base/OrvelTurn.h"
#include "legacy/SceneRecognizer.h"

#include <cstring>

namespace android {

constinit orvel::Relaxed<uint32_t> mAvatarIconTexture = ~0u;
constinit orvel::Relaxed<bool> mAvatarIconTextureExist = false;
constinit orvel::Relaxed<int32_t> mCurrentHkrpgScene = HKRPG_SCENE_NONE;
constinit orvel::Relaxed<int32_t> mLastHkrpgScene = HKRPG_SCENE_NONE;

namespace {

constinit orvel::OrvelTurns sTurns; // guards mHkrpeMinmapTextureMap

constexpr char kAvatarIconLabel[] = "AvatarIcon";
constexpr struct {
    const char* label;
    HKRPG_SCENE scene;
} kMinimaps[] = {
    {"Minimap_Chap02_ADV_City_BackGround", HKRPG_SCENE_CITY},
    {"Minimap_Chap02_ADV_X2_Background", HKRPG_SCENE_X2}, // written so, unlike the others
    {"Minimap_Chap02_MAZ_X21_BackGround", HKRPG_SCENE_X21},
    {"Minimap_Chap01_ADV_Area_Square_01_BackGround", HKRPG_SCENE_SQUARE},
};

void report(int32_t scene) {
    mSceneRecognizer->recognizeHkrpgScene(scene);
    ORVEL_LOGI("recognizeHkrpgScene %d", scene);
    mLastHkrpgScene = scene;
}

void takeSceneOf(unsigned tex) {
    if (const orvel::OrvelLook look(sTurns); look) {
        for (const auto& [scene, minimap] : mHkrpeMinmapTextureMap) {
            if (minimap == static_cast<int32_t>(tex)) {
                mCurrentHkrpgScene = scene;
                break;
            }
        }
    }
}

} // namespace

void markLabelledHkrpgTexture(unsigned& name, const char* label) noexcept {
    if (std::strcmp(label, kAvatarIconLabel) == 0) {
        mAvatarIconTexture = name;
        return;
    }
    for (const auto& minimap : kMinimaps) {
        if (std::strcmp(label, minimap.label) == 0) {
            if (const orvel::OrvelTurn turn(sTurns, orvel::OrvelTurn::WAIT); turn) {
                orvel::guarded("markHkrpgTexture", [&] { mHkrpeMinmapTextureMap[minimap.scene] = int32_t(name); });
            }
            return;
        }
    }
}

void recognizeBoundHkrpgTexture(unsigned& tex) noexcept {
    if (mCurrentHkrpgScene == HKRPG_SCENE_NONE) {
        takeSceneOf(tex);
    }
    if (tex == mAvatarIconTexture) {
        mAvatarIconTextureExist = true;
    }
}

void recognizeHkrpgFrame() {
    if (mAvatarIconTextureExist) {
        if (mCurrentHkrpgScene != mLastHkrpgScene) {
            report(mCurrentHkrpgScene);
        }
        mAvatarIconTextureExist = false;
    } else if (mLastHkrpgScene != HKRPG_SCENE_NONE) {
        report(HKRPG_SCENE_NONE);
    }
    mCurrentHkrpgScene = HKRPG_SCENE_NONE; // deliberately in every frame: each must show its minimap anew
}

} // namespace android
