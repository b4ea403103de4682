#include "Report.h"

#include "LogFile.h"

#include "DesktopRoot.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

namespace android::rig {

namespace {

// Where to write when there is no file: no root, a full disk, the child of a fork (the file tells of its parent).
ReportLayout sNowhere{};
std::atomic<ReportLayout*> sReport{&sNowhere};

void forgetFileInChild() { sReport.store(&sNowhere, std::memory_order_relaxed); }

ReportLayout* mapFile(const std::string& path) {
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        return nullptr;
    }
    void* mapped = MAP_FAILED;
    if (posix_fallocate(fd, 0, sizeof(ReportLayout)) == 0) { // not ftruncate: a full disk is to be noticed here
        mapped = mmap(nullptr, sizeof(ReportLayout), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    }
    close(fd);
    return mapped == MAP_FAILED ? nullptr : static_cast<ReportLayout*>(mapped);
}

} // namespace

ReportLayout& report() { return *sReport.load(std::memory_order_relaxed); }

bool isReporting() { return &report() != &sNowhere; }

void openReport() {
    const std::string path = desktop::underRoot("/orvel/report." + std::to_string(getpid()));
    if (path.empty()) {
        return;
    }
    ReportLayout* file = mapFile(path);
    if (!file) {
        RIG_LOGE("cannot make the report %s: %s", path.c_str(), std::strerror(errno));
        return;
    }
    file->size = sizeof *file;
    file->pid = getpid();
    char program[sizeof file->program] = "";
    // A trace player hides its own name behind that of the recorded program; then the command's name must do.
    const bool known = readlink("/proc/self/exe", program, sizeof program - 1) > 0;
    copyText(file->program, sizeof file->program, known ? program : program_invocation_name);
    std::memcpy(file->magic, ReportLayout::kMagic, sizeof file->magic);
    sReport.store(file, std::memory_order_release);
    pthread_atfork(nullptr, nullptr, forgetFileInChild);
}

void count(Counter counter, uint64_t amount) {
    std::atomic_ref(report().counters[counter]).fetch_add(amount, std::memory_order_relaxed);
}

uint64_t countOf(Counter counter) {
    return std::atomic_ref(report().counters[counter]).load(std::memory_order_relaxed);
}

void reportValue(uint32_t ReportLayout::*field, uint32_t value) { report().*field = value; }

void copyText(char* to, size_t size, std::string_view text) {
    const size_t length = std::min(text.size(), size - 1);
    std::memcpy(to, text.data(), length);
    to[length] = '\0';
}

void reportRenderer(const GlTable& driver) {
    static std::atomic_flag done = ATOMIC_FLAG_INIT;
    if (!driver.glGetString || done.test_and_set(std::memory_order_relaxed)) {
        return;
    }
    if (const GLubyte* renderer = driver.glGetString(GL_RENDERER)) {
        reportText(&ReportLayout::renderer, reinterpret_cast<const char*>(renderer));
    }
    if (const GLubyte* version = driver.glGetString(GL_VERSION)) {
        reportText(&ReportLayout::version, reinterpret_cast<const char*>(version));
    }
}

namespace {
void putBesideReport(const std::string& name, const std::string& suffix, std::string_view text, int mode) {
    const std::string path = desktop::underRoot("/orvel/" + name + "." + std::to_string(getpid()) + suffix);
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | mode, 0644);
    if (fd < 0 || write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        RIG_LOGE("cannot write %s", path.c_str());
    }
    if (fd >= 0) {
        close(fd);
    }
}
} // namespace

void writeBesideReport(const std::string& name, const std::string& suffix, std::string_view text) {
    putBesideReport(name, suffix, text, O_TRUNC);
}

void appendBesideReport(const std::string& name, const std::string& suffix, std::string_view text) {
    putBesideReport(name, suffix, text, O_APPEND);
}

} // namespace android::rig
