// SGame's payload: lists of patterns for labels, and a number.
#include "Fuzz.h"

#include "app/games/sgame/OrvelSGameData.h"

#include <stdexcept>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::logNothing();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 2048) {
        return 0; // compiling patterns is slow, and no configuration is longer
    }
    android::orvel::app::OrvelSGameData payload;
    try {
        payload.ParsePayloadData({reinterpret_cast<const char*>(data), size});
    } catch (const std::logic_error&) {
        return 0; // a threshold that is no number; whoever reads the configuration catches it
    }
    for (int scene = 0; scene < 6; ++scene) {
        payload.GetSceneLabelRegexs(scene).find("battle_hud");
        payload.GetUILabelRegexs(scene).find("battle_hud");
    }
    return 0;
}
