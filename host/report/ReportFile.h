// Reading what programs under the rig left behind.
#pragma once

#include "report/ReportLayout.h"

#include <filesystem>
#include <vector>

namespace android::rig {

/** @return the reports under a system root, most frames first; one that cannot be read costs a line on stderr */
std::vector<ReportLayout> readReports(const std::filesystem::path& root);

} // namespace android::rig
