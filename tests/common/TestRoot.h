// A private system root for one test; a process that has one can be any package.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

class TestRoot {
public:
    TestRoot() {
        char path[] = "/tmp/orvel-test-XXXXXX";
        mPath = mkdtemp(path);
        setenv("ORVEL_ROOT", path, 1);
    }
    ~TestRoot() { std::filesystem::remove_all(mPath); }
    TestRoot(const TestRoot&) = delete;
    TestRoot& operator=(const TestRoot&) = delete;

    /** Writes a file in place, as the tuning service does: a file that exists keeps its inode. */
    void write(const std::string& path, const std::string& text) const {
        const std::filesystem::path full(mPath + path);
        std::filesystem::create_directories(full.parent_path());
        std::ofstream(full, std::ios::binary) << text;
    }

    /** Makes this process be that package, up to the first zero byte; call it before the library looks. */
    void bePackage(const std::string& cmdline) const {
        write("/proc/" + std::to_string(getpid()) + "/cmdline", cmdline);
    }

private:
    std::string mPath;
};
