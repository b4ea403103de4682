// A hostile service: whatever a transaction answers.
#include "Fuzz.h"

#include "DesktopBinder.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <utility>

namespace {

class Hostile : public android::IBinder {
public:
    bool isBinderAlive() const override { return true; }
    android::status_t transact(uint32_t, const android::Parcel&, android::Parcel* reply, uint32_t) override {
        reply->setData(data, size);
        return status;
    }
    android::status_t linkToDeath(const android::sp<DeathRecipient>&, void*, uint32_t) override { return link; }

    const uint8_t* data = nullptr;
    size_t size = 0;
    android::status_t status = 0;
    android::status_t link = 0;
};

const android::sp<Hostile>& hostile() {
    static const auto& service = *new android::sp<Hostile>(new Hostile);
    return service;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::logNothing();
    fuzz::root().write("/proc/" + std::to_string(getpid()) + "/cmdline", "com.miHoYo.Yuanshen");
    android::desktop::offerService(android::String16("velmor.ravelo"), hostile());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) {
        return 0;
    }
    hostile()->status = data[0] % 4 ? android::NO_ERROR : -static_cast<int>(data[0]);
    hostile()->link = data[1] % 4 ? android::NO_ERROR : -static_cast<int>(data[1]);
    hostile()->data = data + 2;
    hostile()->size = size - 2;
    auto& settings = android::orvel::OrvelSettings::getInstance();
    settings.mApplicationType = android::APP_TYPE_YUANSHEN;
    settings.initOrvelPrefs();
    delete std::exchange(settings.mPrefs, nullptr);
    return 0;
}
