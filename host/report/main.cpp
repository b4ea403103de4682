// orvel-report: says in one line what a run under the rig came to.
#include "report/ReportFile.h"
#include "report/ReportText.h"

#include <json/writer.h>

#include <cstring>
#include <fstream>
#include <iostream>

namespace {

constexpr char kUsage[] = "usage: orvel-report ROOT [--json FILE]\n"
                          "Prints one line about the process with the most frames of a run under that system root;\n"
                          "--json writes everything about every process.\n";

constexpr char kNoReport[] = "library not loaded (the program never opened EGL through the rig; one that draws with "
                             "GLX, or that has a library path built in, goes past it)";

} // namespace

int main(int argc, char** argv) {
    const bool wantsJson = argc == 4 && std::strcmp(argv[2], "--json") == 0;
    if (argc != 2 && !wantsJson) {
        std::cerr << kUsage;
        return 2;
    }
    const auto reports = android::rig::readReports(argv[1]);
    const std::string summary = reports.empty() ? kNoReport : android::rig::summaryOf(reports.front());
    std::cout << "orvel: " << summary << '\n';
    if (wantsJson) {
        Json::Value json;
        json["summary"] = summary;
        json["processes"] = Json::arrayValue;
        for (const auto& report : reports) {
            json["processes"].append(android::rig::jsonOf(report));
        }
        std::ofstream file(argv[3]);
        if (!(file << json << '\n')) {
            std::cerr << "orvel-report: cannot write " << argv[3] << '\n';
            return 1;
        }
    }
    return 0;
}
