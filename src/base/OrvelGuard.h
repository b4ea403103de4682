// Keeps our exceptions out of the game.
#pragma once

#include "base/OrvelLog.h"

#include <exception>

namespace android::orvel {

/**
 * Runs work; what it throws ends in the log (all that is ours is a std::exception). On the draw path use it only around
 * drawing of our own: a hook itself must not throw.
 */
template <typename Work>
void guarded(const char* what, Work&& work) {
    try {
        work();
    } catch (const std::exception& error) {
        ORVEL_LOGE("%s failed: %s", what, error.what());
    }
}

} // namespace android::orvel
