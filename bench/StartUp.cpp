// orvel_startup: opens liborvel.so as a loader does and prints one line with what that cost.
//   orvel_startup ROOT PACKAGE [CONFIGURATION]   the tuning service answers at once with that text; absent without
#include "DesktopBinder.h"
#include "NullDriver.h"

#include <EGL/OrvelStub.h>
#include <android/log.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

using namespace android;

namespace {

/** A service in this process, so that no time is spent waiting for another. */
class InstantService : public IBinder {
public:
    explicit InstantService(const char* configuration) : mConfiguration(configuration) {}
    bool isBinderAlive() const override { return true; }
    status_t transact(uint32_t, const Parcel&, Parcel* reply, uint32_t) override {
        reply->writeInt32(0);
        reply->writeString16(mConfiguration);
        reply->setDataPosition(0);
        return NO_ERROR;
    }
    status_t linkToDeath(const sp<DeathRecipient>&, void*, uint32_t) override { return NO_ERROR; }

private:
    const String16 mConfiguration;
};

struct Memory {
    long dirtyKib = 0;  // private dirty, whole process
    long mappedKib = 0; // address space of liborvel.so
};

Memory measure() {
    Memory memory;
    std::ifstream maps("/proc/self/smaps");
    bool ours = false;
    for (std::string line; std::getline(maps, line);) {
        long value = 0;
        if (line.find('-') < line.find(' ') && line.find(':') > line.find(' ')) {
            ours = line.ends_with("/liborvel.so");
        } else if (std::sscanf(line.c_str(), "Private_Dirty: %ld", &value) == 1) {
            memory.dirtyKib += value;
        } else if (ours && std::sscanf(line.c_str(), "Size: %ld", &value) == 1) {
            memory.mappedKib += value;
        }
    }
    return memory;
}

double microsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: orvel_startup ROOT PACKAGE [CONFIGURATION]\n");
        return 2;
    }
    setenv("ORVEL_ROOT", argv[1], 1);
    const std::string process = std::string(argv[1]) + "/proc/" + std::to_string(getpid());
    std::filesystem::create_directories(process);
    std::ofstream(process + "/cmdline") << argv[2] << '\0';
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    if (argc > 3) {
        desktop::offerService(String16("velmor.ravelo"), new InstantService(argv[3]));
    }
    static gl_hooks_t gles2;
    static egl_connection_t connection{};
    connectNullDriver(connection, gles2);

    const Memory before = measure();
    auto start = std::chrono::steady_clock::now();
    void* library = dlopen(ORVEL_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    const double openMicros = microsSince(start);
    const Memory opened = measure();
    const auto createInstance = reinterpret_cast<void* (*)()>(dlsym(library, "createInstance"));
    start = std::chrono::steady_clock::now();
    auto* stub = static_cast<OrvelStub*>(createInstance());
    stub->earlyInitOrvel(&connection);
    const double startMicros = microsSince(start);
    const Memory after = measure();
    std::printf(
        "%-26s dlopen %6.0f us, createInstance + earlyInitOrvel %6.0f us, private dirty +%ld KiB (%ld of it on "
        "opening, packaged libraries with it), liborvel.so maps %ld KiB\n",
        argc > 3 ? (stub->isEnabled() ? "enabled:" : "disabled by the service:") : "service absent:", openMicros,
        startMicros, after.dirtyKib - before.dirtyKib, opened.dirtyKib - before.dirtyKib, after.mappedKib);
    std::fflush(stdout);
    std::filesystem::remove_all(process);
    _exit(0);
}
