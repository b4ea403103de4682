// Super resolution: decides when the game's final image is upscaled.
#pragma once

#include <cstdint>
#include <utility>

namespace android::orvel {

/** One instance for the process, used on the game's rendering thread. */
class OrvelSRControl {
public:
    static OrvelSRControl& getInstance();

    /** Whether a configuration asks for the feature at all; read before each indexed draw. */
    static bool isConfigured() { return false; }

    /** Takes the sizes from the preferences; called once at start-up. */
    void initSuperResolutionConfig();
    /** Once per swap: looks whether the switch changed. */
    void doGameSuperResolution();
    /** Before each indexed draw: lets the final copy to the window sample the upscaled image. */
    void hookForPostprocess();
    /** Remembers programs labelled as the final copy. */
    void recordFSRProgramByProgramLabel(unsigned type, unsigned name, const char* label);
    /** @return width and height asked of the window's buffers; 0, 0 until there was a request */
    std::pair<int32_t, int32_t> getTargetBackbufferSize() const { return {0, 0}; }

private:
    OrvelSRControl() = default;
};

inline OrvelSRControl& OrvelSRControl::getInstance() {
    static OrvelSRControl instance;
    return instance;
}

// The feature's place in the system: called by others already, it upscales nothing yet.
inline void OrvelSRControl::initSuperResolutionConfig() {}
inline void OrvelSRControl::doGameSuperResolution() {}
inline void OrvelSRControl::hookForPostprocess() {}
inline void OrvelSRControl::recordFSRProgramByProgramLabel(unsigned, unsigned, const char*) {}

} // namespace android::orvel
