#include "report/ReportText.h"

#include <algorithm>

namespace android::rig {

namespace {

constexpr const char* kLayers[LAYER_COUNT] = {"none", "legacy", "framework"};

std::string reasonOf(const ReportLayout& report) {
#define ORVEL_REASON_TEXT(name, text) text,
    static constexpr const char* kTexts[REASON_COUNT] = {ORVEL_REASONS(ORVEL_REASON_TEXT)};
#undef ORVEL_REASON_TEXT
    std::string text = kTexts[report.reason];
    if (const size_t place = text.find("%s"); place != std::string::npos) {
        text.replace(place, 2, report.package);
    }
    return text;
}

std::string number(uint64_t value, const char* what) {
    return std::to_string(value) + ' ' + what + (value == 1 ? "" : "s");
}

std::string windowBuffers(const ReportLayout& report) {
    return std::to_string(report.windowWidth) + 'x' + std::to_string(report.windowHeight);
}

} // namespace

std::string summaryOf(const ReportLayout& report) {
    std::string line;
    if (report.libraryLoaded) {
        line = "library loaded, ";
        line += report.enabled ? "enabled" : "not enabled (" + reasonOf(report) + ")";
        line += ", ";
        if (report.hookCount > 0) {
            line += std::string(kLayers[report.layer]) + " layer, " + number(report.hookCount, "hook") + " installed";
        } else { // an enabled legacy game is hooked in any case
            line += report.enabled ? "nothing hooked (no module is configured that can be used)" : "nothing hooked";
        }
    } else {
        line = std::string("library not loaded (") +
               (*report.libraryProblem ? report.libraryProblem : "the program ended during the start") + ")";
    }
    if (*report.framework) {
        line += std::string(", ") + report.framework + ", " + number(report.counters[CONTEXTS], "context");
    }
    line += ", " + number(report.counters[PROGRAM_SWAPS], "frame") + " swapped";
    if (const uint64_t draws = report.counters[DRAWS]) {
        line += ", " + std::to_string(report.counters[COARSE_DRAWS]) + " of " + number(draws, "draw") +
                " at a coarse shading rate";
    }
    if (report.enabled) {
        line += ", " + std::to_string(report.counters[SHADERS_REWRITTEN]) + " of " +
                number(report.counters[SHADERS], "shader") + " rewritten, " +
                std::to_string(report.counters[SWITCHES]) + " resolution switch" +
                (report.counters[SWITCHES] == 1 ? "" : "es") + " with " +
                number(report.counters[TEXTURES_REPLACED], "texture") + " replaced";
        if (const uint64_t repeated = report.counters[FRAMES_REPEATED]) {
            line += ", " + number(repeated, "frame") + " repeated";
        }
        if (const uint64_t changes = report.counters[WINDOW_CHANGES]) {
            line += ", window buffers changed " + number(changes, "time") + ", last to " + windowBuffers(report);
        }
    }
    return line;
}

Json::Value jsonOf(const ReportLayout& report) {
    Json::Value json;
    json["pid"] = report.pid;
    json["program"] = report.program;
    json["package"] = report.package;
    json["libraryLoaded"] = report.libraryLoaded != 0;
    json["libraryProblem"] = report.libraryProblem;
    json["enabled"] = report.enabled != 0;
    json["reason"] = reasonOf(report);
    json["layer"] = kLayers[report.layer];
    json["framework"] = report.framework;
    json["hookCount"] = report.hookCount;
    json["hooks"] = Json::arrayValue;
    for (uint32_t i = 0; i < std::min(report.hookCount, ReportLayout::kMaxHooks); ++i) {
        json["hooks"].append(report.hooks[i]);
    }
    json["renderer"] = report.renderer;
    json["version"] = report.version;
#define ORVEL_COUNTER_JSON(name, jsonName) json[#jsonName] = Json::UInt64(report.counters[name]);
    ORVEL_COUNTERS(ORVEL_COUNTER_JSON)
#undef ORVEL_COUNTER_JSON
    json["windowBuffers"] = report.counters[WINDOW_CHANGES] ? Json::Value(windowBuffers(report)) : Json::Value();
    Json::Value& binder = json["binder"];
    binder["lookups"] = report.binderLookups;
    binder["found"] = report.binderFound;
    binder["transactions"] = report.binderTransactions;
    binder["lastStatus"] = report.binderStatus;
    binder["lastException"] = report.binderException;
    binder["lastReplyBytes"] = report.binderReplyBytes;
    json["summary"] = summaryOf(report);
    return json;
}

} // namespace android::rig
