// What the fuzz targets share. Each target is a program: it gets bytes, and must neither crash nor hang nor break what
// it promises to keep. Nothing is logged.
#pragma once

#include <android/log.h>
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>

namespace fuzz {

/**
 * A private system root, which is where every file of a device is looked for. In memory where there is such a place.
 */
class Root {
public:
    Root()
        : mPath((access("/dev/shm", W_OK) == 0 ? "/dev/shm/orvel-fuzz-" : "/tmp/orvel-fuzz-") +
                std::to_string(getpid())) {
        std::filesystem::create_directories(mPath);
        setenv("ORVEL_ROOT", mPath.c_str(), 1);
    }
    ~Root() { std::filesystem::remove_all(mPath); }
    Root(const Root&) = delete;
    Root& operator=(const Root&) = delete;

    /** Writes a file in place. */
    void write(const std::string& path, std::string_view bytes) const {
        const std::string full = mPath + path;
        int file = open(full.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (file < 0) {
            std::filesystem::create_directories(std::filesystem::path(full).parent_path());
            file = open(full.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        }
        if (::write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()) || close(file) != 0) {
            std::abort();
        }
    }

private:
    const std::string mPath;
};

/** The root of this process; goes when it ends. */
inline const Root& root() {
    static const Root only;
    return only;
}

inline void logNothing() {
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
}

/** Ends the program with a report of how it came to this. */
inline void demand(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "BROKEN: %s\n", what);
        std::abort();
    }
}

} // namespace fuzz
