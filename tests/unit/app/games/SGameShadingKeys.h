// What the tuning service says to the SGame shading module.
#pragma once

#include <json/value.h>

#include <map>
#include <string>

/** What is not given is usable: 4x4 for "far", 2x2 for "ground", which level 2 makes 4x2; no minimap. */
inline Json::Value shadingKeys(const std::map<std::string, std::string>& given = {}) {
    Json::Value json;
    json["vrs_LabelInfo"] = "ground#g_.*|floor;far#f_.*";
    json["vrs_LabelLevel"] = "1#44:far,22:ground$44,22,12,42;2#42:ground$12,22,42,44,12,22";
    json["vrs_MapInfo"] = "0;0;2220;932";
    for (const auto& [key, text] : given) {
        json[key] = text;
    }
    return json;
}
