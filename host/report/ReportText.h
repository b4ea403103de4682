// Reports in words and in JSON.
#pragma once

#include "report/ReportLayout.h"

#include <json/value.h>

#include <string>

namespace android::rig {

/** One line about one process. */
std::string summaryOf(const ReportLayout& report);

/** Everything about one process. */
Json::Value jsonOf(const ReportLayout& report);

} // namespace android::rig
