// What kind of process the library runs in. Everything per game is keyed to this.
#pragma once

#include <cstdint>

namespace android {

enum OrvelApplicationType : uint32_t {
    APP_TYPE_NONE = 0,
    APP_TYPE_SGAME = 1,
    APP_TYPE_PUBG = 2,
    APP_TYPE_YUANSHEN = 3,
    APP_TYPE_HKRPG = 4,
    APP_TYPE_HP = 5,
    APP_TYPE_QQLIVE = 6,
    APP_TYPE_7 = 7, // no package maps to it
    APP_TYPE_AWEME = 8,
    APP_TYPE_BILI = 9,
};

} // namespace android
