// Backbuffer scaling: resizes the buffers of the game's window and keeps the sizes that the game states in step.
#pragma once

#include "base/Relaxed.h"

#include <cstdint>

struct ANativeWindow;

namespace android::orvel {

/**
 * One instance for the process. A window arrives on the thread that makes its surface and is looked at once for each
 * resize; everything else happens on the rendering thread, so nothing is locked.
 */
class OrvelBackbufferControl {
public:
    static OrvelBackbufferControl& getInstance();

    /** Takes the window of a new surface, if the engine's main thread makes it. @param window not owned, may be null */
    void updateANativeWindow(ANativeWindow* window);

    /**
     * Resizes the window's buffers if their size is one of the configured ones. Any size but those and the tolerated
     * one switches the feature off for the rest of the process.
     * @param width, height pixels, 1 to 9999
     * @return whether the buffers were resized
     */
    bool setANWBuffersGeometry(int width, int height);

    /** @return whether the feature is configured and was not switched off */
    bool isEnableBackbufferScale() const;

    /**
     * Replaces a size that the game states for its window by the one last applied. An unknown size switches the feature
     * off for the rest of the process. For the platform's window code, where such sizes pass; nothing in the library
     * calls it.
     */
    void checkModifyUserDimensions(unsigned& width, unsigned& height);

private:
    OrvelBackbufferControl() = default;

    Relaxed<ANativeWindow*> mWindow{nullptr};
    int32_t mWidth = 0; // last applied
    int32_t mHeight = 0;
};

} // namespace android::orvel
