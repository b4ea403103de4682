// Backbuffer scaling: resizes the buffers of the game's window.
#pragma once

struct ANativeWindow;

namespace android::orvel {

/** One instance for the process. */
class OrvelBackbufferControl {
public:
    static OrvelBackbufferControl& getInstance() {
        static OrvelBackbufferControl instance;
        return instance;
    }

    /** Whether sizes of the game's window may have to be rewritten; read before each call that carries a size. */
    static bool rewritesSizes() { return false; }

    /** Called with the window of each new surface. The feature's place in the system: no window is resized yet. */
    void updateANativeWindow(ANativeWindow*) {}

private:
    OrvelBackbufferControl() = default;
};

} // namespace android::orvel
