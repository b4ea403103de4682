#include "settings/ConfigText.h"

#include "base/OrvelLog.h"
#include "base/OrvelParse.h"

#include <json/value.h>

namespace android::orvel {

std::optional<std::string> configText(const Json::Value& json, const char* key) {
    if (!json.isObject() || !json.isMember(key)) {
        return std::nullopt;
    }
    const Json::Value& value = json[key];
    if (!value.isConvertibleTo(Json::stringValue)) {
        ORVEL_LOGE("configuration of \"%s\" is malformed: no text", key);
        return std::nullopt;
    }
    return value.asString();
}

void logMalformed(const char* key, const std::string& text) {
    ORVEL_LOGE("configuration of \"%s\" is malformed: \"%s\"", key, oneLine(text).c_str());
}

} // namespace android::orvel
