// orvel-service: the tuning service of a desktop. It answers a process's question for its configuration from a folder
// of PACKAGE.json files and prints the scenes that are reported to it. It keeps no state of its own: stop and start
// it as you like, a running game goes on with the configuration that it got.
#include "DesktopBinder.h"
#include "SystemRoot.h"

#include <json/json.h>
#include <utils/String8.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <string>

namespace {

using android::Parcel;
using android::status_t;
using android::String16;
using android::String8;

constexpr char kServiceName[] = "velmor.ravelo";
constexpr char kInterfaceToken[] = "com.velmor.ravelo.IRaveloInterface";
constexpr uint32_t kReportScene = 3;
constexpr uint32_t kAskConfiguration = 13;
constexpr int32_t kIllegalArgument = -3; // exception code of a call that the service does not understand

constexpr char kUsage[] = "usage: orvel-service --configs DIR --root DIR\n"
                          "  --configs DIR  holds PACKAGE.json for each package to be tuned\n"
                          "  --root DIR     the system root that games run with (ORVEL_ROOT)\n";

std::string text(const String16& utf16) { return String8(utf16).string(); }

/** A file's content; nothing when it cannot be read. */
std::optional<std::string> readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

class TuningService {
public:
    TuningService(std::string configs, const std::string& root)
        : mConfigs(std::move(configs)),
          mJournal(root + "/orvel/service.jsonl", std::ios::app) {}

    status_t answer(uint32_t code, const Parcel& data, Parcel* reply) {
        if (text(data.readString16()) != kInterfaceToken) {
            std::fprintf(stderr, "orvel-service: call %u with a wrong interface token\n", code);
            reply->writeInt32(kIllegalArgument);
            return android::NO_ERROR;
        }
        switch (code) {
        case kAskConfiguration:
            answerConfiguration(text(data.readString16()), reply);
            break;
        case kReportScene:
            data.readInt32();
            noteScene(text(data.readString16()));
            break;
        default:
            std::fprintf(stderr, "orvel-service: unknown call %u\n", code);
            reply->writeInt32(kIllegalArgument);
        }
        return android::NO_ERROR;
    }

private:
    void answerConfiguration(const std::string& package, Parcel* reply) {
        // A package that would leave the folder is no package.
        const bool named = !package.empty() && package.find('/') == std::string::npos;
        const auto configuration = named ? readFile(mConfigs + "/" + package + ".json") : std::nullopt;
        reply->writeInt32(0); // no exception
        reply->writeString16(String16(configuration.value_or("").c_str()));
        Json::Value row;
        row["asked"] = "configuration";
        row["package"] = package;
        row["found"] = configuration.has_value();
        row["bytes"] = Json::UInt64(configuration.value_or("").size());
        journal(row);
    }

    void noteScene(const std::string& report) {
        Json::Value row;
        row["asked"] = "scene";
        row["report"] = report;
        journal(row);
    }

    /** One line on standard output and one in the root's journal, with the time in seconds. */
    void journal(Json::Value& row) {
        using namespace std::chrono;
        row["time"] = duration<double>(system_clock::now().time_since_epoch()).count();
        Json::StreamWriterBuilder writer;
        writer["indentation"] = "";
        writer["precision"] = 13;
        const std::string line = Json::writeString(writer, row);
        const std::lock_guard lock(mMutex);
        std::printf("orvel-service: %s\n", line.c_str());
        std::fflush(stdout);
        mJournal << line << std::endl;
    }

    const std::string mConfigs;
    std::mutex mMutex;
    std::ofstream mJournal;
};

} // namespace

int main(int argc, char** argv) {
    std::string configs;
    std::string root;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--configs") == 0) {
            configs = argv[i + 1];
        } else if (std::strcmp(argv[i], "--root") == 0) {
            root = argv[i + 1];
        }
    }
    if (argc != 5 || configs.empty() || root.empty()) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    if (!orvel::host::prepareRoot(root)) {
        return 1;
    }
    const int listener = android::desktop::listenAsService(root, kServiceName);
    if (listener < 0) {
        std::fprintf(stderr, "orvel-service: cannot listen under %s: %s\n", root.c_str(), strerror(errno));
        return 1;
    }
    std::printf("orvel-service: ready, configurations from %s\n", configs.c_str());
    std::fflush(stdout);
    TuningService service(configs, root);
    android::desktop::serveClients(listener, [&service](uint32_t code, const Parcel& data, Parcel* reply) {
        return service.answer(code, data, reply);
    });
    return 0;
}
