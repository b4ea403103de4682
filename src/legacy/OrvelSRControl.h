// Super resolution: decides when the game's final image is upscaled.
#pragma once

#include "base/OrvelTurn.h"
#include "base/Relaxed.h"
#include "legacy/OrvelSR.h"
#include "legacy/SwitchFile.h"

#include <cstdint>
#include <limits>
#include <mutex>
#include <string>
#include <unordered_set>
#include <utility>

namespace android::orvel {

/**
 * One instance for the process. Functions documented "any thread" may be called on any, the others on the game's
 * rendering thread: the one that swaps and draws the final copy. The watched file "sr" switches it: just before a
 * labelled copy to the window samples a picture of the reduced size, that picture is replaced by its upscaled one.
 */
class OrvelSRControl {
public:
    static OrvelSRControl& getInstance();

    OrvelSRControl(const OrvelSRControl&) = delete;
    OrvelSRControl& operator=(const OrvelSRControl&) = delete;

    /** Whether a configuration asks for the feature at all; read before each indexed draw, on any thread. */
    static bool isConfigured() { return sConfigured; }
    /** Whether a size was asked of the window's buffers; read before each call that carries a size, on any thread. */
    static bool isBackbufferSizeAsked() { return sBackbufferSizeAsked; }

    /** Takes the sizes from the preferences; called once at start-up. */
    void initSuperResolutionConfig();
    /** Once per swap: reads the switch, at first and then whenever it was written. */
    void doGameSuperResolution();
    /** Reads the switch and asks for the window size that belongs to it. */
    void updateGameSRConfig();
    /** Asks OrvelBackbufferControl for the window size that belongs to the switch. */
    void updateBackbufferSize();
    /**
     * Before each indexed draw, on any thread: lets the final copy to the window, which only the rendering thread
     * draws, sample the upscaled image.
     */
    void hookForPostprocess();
    /**
     * Remembers programs labelled as the final copy. Any thread: games label what they load.
     * @param type  GL_PROGRAM_OBJECT_EXT counts
     * @param label zero-terminated
     */
    void recordFSRProgramByProgramLabel(unsigned type, unsigned name, const char* label);
    /** @return width and height asked of the window's buffers; 0, 0 until there was a request. Any thread. */
    std::pair<int32_t, int32_t> getTargetBackbufferSize() const {
        return {mTargetBackbufferSize.width, mTargetBackbufferSize.height};
    }

private:
    OrvelSRControl() = default;
    void readSwitchOnce();

    static inline Relaxed<bool> sConfigured = false; // all four sizes below are at least 1
    static inline Relaxed<bool> sBackbufferSizeAsked = false;

    int32_t mBaseSRWidthSize = 0; // of the picture that the game's final pass samples
    int32_t mBaseSRHeightSize = 0;
    int32_t mTargetSRWidthSize = 0; // of the upscaled one
    int32_t mTargetSRHeightSize = 0;
    OrvelTurns mTurns;                         // guards the programs; threads that load label them, too
    std::unordered_set<uint32_t> mFSRPrograms; // only grows: a game makes its copy programs once
    OrvelSR mSR;
    Relaxed<int32_t> mSwitchStatusSR = std::numeric_limits<int32_t>::max(); // 1 on, anything else off
    std::string mPackageName;
    bool mSupportSR = false; // the switch could be read at start
    SwitchFile mFile{"/data/system/mcd/sr", "SuperResolution SR"};
    struct {
        Relaxed<int32_t> width = 0;
        Relaxed<int32_t> height = 0;
    } mTargetBackbufferSize;
    std::mutex mMutex; // never locked: mTurns does what is needed
};

} // namespace android::orvel
