// Hkrpg's scenes are told apart by their minimap: a labelled texture, bound in a frame that binds the avatar's icon,
// too.
#pragma once

#include "base/Relaxed.h"
#include "settings/orvel_modify_params.h"

#include <cstdint>

namespace android {

// One of each for the process, in spite of the m: they are known by these names.

// -1 until one was labelled: 0 would make every unbind count as the icon.
extern orvel::Relaxed<uint32_t> mAvatarIconTexture;
extern orvel::Relaxed<bool> mAvatarIconTextureExist; // bound in this frame
extern orvel::Relaxed<int32_t> mCurrentHkrpgScene;   // of this frame, 0 none
extern orvel::Relaxed<int32_t> mLastHkrpgScene;      // reported last

// What the hooks call. Each does nothing unless the switch is on and the recogniser exists.

/** Remembers textures that carry one of the labels of the minimaps and the avatar icon. */
void markLabelledHkrpgTexture(unsigned& name, const char* label) noexcept;
inline void markHkrpgTexture(unsigned& name, const char* label) {
    if (mEnableHkrpgSceneRecognize && mSceneRecognizer) {
        markLabelledHkrpgTexture(name, label);
    }
}

/** Takes the scene of a minimap texture that is being bound. */
void recognizeBoundHkrpgTexture(unsigned& tex) noexcept;
inline void recognizeHkrpgTexture(unsigned& tex) {
    if (mEnableHkrpgSceneRecognize && mSceneRecognizer) {
        recognizeBoundHkrpgTexture(tex);
    }
}

/** Once per frame: reports the scene when it changed. */
void recognizeHkrpgFrame();
inline void recognizeHkrpgScene() {
    if (mEnableHkrpgSceneRecognize && mSceneRecognizer) {
        recognizeHkrpgFrame();
    }
}

} // namespace android
