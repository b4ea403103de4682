// Texts in the service's configuration.
#pragma once

#include <json/forwards.h>

#include <optional>
#include <string>

namespace android::orvel::app {

/** @return the key's value as text; nothing when it is missing, or a list or an object, which is logged */
std::optional<std::string> configText(const Json::Value& json, const char* key);

} // namespace android::orvel::app
