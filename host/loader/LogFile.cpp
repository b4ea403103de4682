#include "LogFile.h"

#include "Report.h"

#include "DesktopRoot.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>

namespace android::rig {

namespace {

// Never freed: threads log until the process is gone.
const std::string* sPath = nullptr; // null without a root
bool sAlsoToStderr = false;

char letterOf(int priority) {
    switch (priority) {
    case ANDROID_LOG_FATAL:
    case ANDROID_LOG_ERROR:
        return 'E';
    case ANDROID_LOG_WARN:
        return 'W';
    case ANDROID_LOG_INFO:
        return 'I';
    default:
        return 'D';
    }
}

// One write a line, so that the lines of several processes do not mix.
void writeLine(int fd, const std::string& line) {
    if (write(fd, line.data(), line.size()) < 0) {
        return; // there is nowhere left to complain
    }
}

// What processors and modules there are cannot be seen from outside; the library says it once, in its log.
void noteFramework(const char* message) {
    constexpr std::string_view kBegin = "framework: ";
    if (std::string_view(message).starts_with(kBegin)) {
        reportText(&ReportLayout::framework, message + kBegin.size());
    }
}

void logLine(const __android_logger_data* data, const char* message) {
    noteFramework(message);
    std::string line = std::to_string(getpid()) + ' ' + letterOf(data->priority) + ' ' + (data->tag ? data->tag : "") +
                       ": " + message + '\n';
    // Opened for each line: a program may close descriptors that it does not know, and get the number for its own file.
    const int fd = sPath ? open(sPath->c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644) : -1;
    if (fd >= 0) {
        writeLine(fd, line);
        close(fd);
    }
    if (sAlsoToStderr || (fd < 0 && data->priority >= ANDROID_LOG_WARN)) {
        writeLine(STDERR_FILENO, line);
    }
}

} // namespace

void openLog() {
    const std::string folder = desktop::underRoot("/orvel");
    if (!folder.empty()) {
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        sPath = new std::string(folder + "/log");
    }
    const char* wish = std::getenv("ORVEL_LOG");
    sAlsoToStderr = wish && std::string_view(wish) == "1";
    __android_log_set_logger(logLine);
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
}

} // namespace android::rig
