#include "app/ConfigText.h"

#include "base/OrvelLog.h"

#include <json/value.h>

namespace android::orvel::app {

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

} // namespace android::orvel::app
