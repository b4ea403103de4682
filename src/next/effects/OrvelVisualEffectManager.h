// The colour-filter effects of one render context.
#pragma once

namespace android::orvel::next {

/** Made by a processor that has a filter module, on its context; used on that context's thread only. */
class OrvelVisualEffectManager {
public:
    /** Works on the loading of resources that is under way, once it is enabled. Called once per frame. */
    void FrameEnd() {}

    /** Resources are big: a game enables their loading when a pause does not show. */
    void EnableLoadResource() { mLoadingEnabled = true; }
    bool IsLoadResourceEnabled() const { return mLoadingEnabled; }

private:
    bool mLoadingEnabled = false;
};

} // namespace android::orvel::next
