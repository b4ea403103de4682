// Texts in the service's configuration.
#pragma once

#include <json/forwards.h>

#include <optional>
#include <string>

namespace android::orvel {

/** @return the key's value as text; nothing when it is missing, or a list or an object, which is logged */
std::optional<std::string> configText(const Json::Value& json, const char* key);

/** Says that the key's text is no use. */
void logMalformed(const char* key, const std::string& text);

} // namespace android::orvel
