// What the library logs while this object lives, instead of standard error. One at a time.
#pragma once

#include <android/log.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

struct LogLine {
    int priority;
    std::string text;
    bool operator==(const LogLine&) const = default;
};

inline void PrintTo(const LogLine& line, std::ostream* out) { *out << line.priority << " \"" << line.text << '"'; }

class LogCapture {
public:
    LogCapture() {
        clear();
        __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE); // else no debug line reaches a logger
        __android_log_set_logger([](const __android_logger_data* data, const char* text) {
            if (data->tag && std::strcmp(data->tag, "libOrvel") == 0) {
                const std::lock_guard lock(store().mutex);
                store().lines.push_back({data->priority, text});
            }
        });
    }
    ~LogCapture() { __android_log_set_logger(__android_log_stderr_logger); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    void clear() {
        const std::lock_guard lock(store().mutex);
        store().lines.clear();
    }

    std::vector<LogLine> lines() const {
        const std::lock_guard lock(store().mutex);
        return store().lines;
    }

    /** @return the lines of one priority */
    std::vector<std::string> texts(int priority) const {
        std::vector<std::string> found;
        for (const LogLine& line : lines()) {
            if (line.priority == priority) {
                found.push_back(line.text);
            }
        }
        return found;
    }

    /** @return whether a line of exactly that priority and text was logged */
    bool has(int priority, const std::string& text) const {
        const std::vector<LogLine> all = lines();
        return std::find(all.begin(), all.end(), LogLine{priority, text}) != all.end();
    }

private:
    struct Store {
        std::mutex mutex;
        std::vector<LogLine> lines;
    };
    static Store& store() { // never destroyed: threads of the library log until the process ends
        static auto* lines = new Store;
        return *lines;
    }
};
