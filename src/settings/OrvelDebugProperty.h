// The switch for verbose logging.
#pragma once

#include <cstring>
#include <cutils/properties.h>

namespace android::orvel {

/** @return whether the property "vendor.orvel.debug" is exactly "true" now */
inline bool isDebugPropertySet() {
    char value[PROPERTY_VALUE_MAX] = {};
    property_get("vendor.orvel.debug", value, "false");
    return std::strcmp(value, "true") == 0;
}

} // namespace android::orvel
