// What the fuzz targets share. Each target is a program: it gets bytes, and must neither crash nor hang nor break what
// it promises to keep. Nothing is logged.
#pragma once

#include <android/log.h>
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace fuzz {

/** A private system root, which is where every file of a device is looked for. */
class Root {
public:
    Root() : mPath(std::filesystem::temp_directory_path() / ("orvel-fuzz-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(mPath);
        setenv("ORVEL_ROOT", mPath.c_str(), 1);
    }
    ~Root() { std::filesystem::remove_all(mPath); }
    Root(const Root&) = delete;
    Root& operator=(const Root&) = delete;

    /** Writes a file in place. */
    void write(const std::string& path, const std::string& bytes) const {
        const std::filesystem::path full(mPath.string() + path);
        std::filesystem::create_directories(full.parent_path());
        if (std::FILE* file = std::fopen(full.c_str(), "wb")) {
            std::fwrite(bytes.data(), 1, bytes.size(), file);
            std::fclose(file);
        }
    }

private:
    const std::filesystem::path mPath;
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
