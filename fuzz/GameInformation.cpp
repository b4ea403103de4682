// The file through which the tuning service tells a running game what has changed.
#include "Fuzz.h"

#include "settings/GameInfoMonitor.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::root();
    fuzz::logNothing();
    android::GameInfoMonitor::getInstance().setPackageName("game");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::root().write("/data/system/mcd/gameInfo", {reinterpret_cast<const char*>(data), size});
    android::GameInfoMonitor::getInstance().updateGameInfo();
    return 0;
}
