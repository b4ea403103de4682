#include "report/ReportFile.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iostream>

namespace android::rig {

namespace {

template <size_t N>
void endText(char (&text)[N]) {
    text[N - 1] = '\0';
}

/** @return null, or what is wrong with the file */
const char* read(const std::filesystem::path& path, ReportLayout* report) {
    std::ifstream file(path, std::ios::binary);
    if (!file.read(reinterpret_cast<char*>(report), sizeof *report)) {
        return "too short";
    }
    if (std::memcmp(report->magic, ReportLayout::kMagic, sizeof report->magic) != 0) {
        return "no report";
    }
    if (report->size != sizeof *report || file.peek() != std::ifstream::traits_type::eof()) {
        return "of another build";
    }
    if (report->reason >= REASON_COUNT || report->layer >= LAYER_COUNT) {
        return "damaged";
    }
    endText(report->program);
    endText(report->package);
    endText(report->libraryProblem);
    endText(report->framework);
    endText(report->renderer);
    endText(report->version);
    for (auto& hook : report->hooks) {
        endText(hook);
    }
    return nullptr;
}

bool hasMoreFrames(const ReportLayout& a, const ReportLayout& b) {
    for (const Counter counter : {PROGRAM_SWAPS, CONTEXTS}) {
        if (a.counters[counter] != b.counters[counter]) {
            return a.counters[counter] > b.counters[counter];
        }
    }
    return a.pid < b.pid;
}

} // namespace

std::vector<ReportLayout> readReports(const std::filesystem::path& root) {
    std::vector<ReportLayout> reports;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(root / "orvel", error)) {
        if (entry.path().filename().string().rfind("report.", 0) != 0) {
            continue;
        }
        ReportLayout report{};
        if (const char* problem = read(entry.path(), &report)) {
            std::cerr << "orvel-report: " << entry.path().string() << " skipped: " << problem << '\n';
        } else {
            reports.push_back(report);
        }
    }
    std::sort(reports.begin(), reports.end(), hasMoreFrames);
    return reports;
}

} // namespace android::rig
