// The tuning service inside this process. Holds its death recipients weakly, as a device's binder does.
#pragma once

#include "DesktopBinder.h"

#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <utils/String8.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

class FakeRavelo : public android::IBinder {
public:
    /** Offers a service that answers with this text; it stays until withdrawn. */
    static android::sp<FakeRavelo> offer(const std::string& answer = "") {
        android::sp<FakeRavelo> service = new FakeRavelo;
        service->answer = answer;
        android::desktop::offerService(android::String16("velmor.ravelo"), service);
        return service;
    }
    static FakeRavelo* offered() {
        const auto manager = android::defaultServiceManager();
        return static_cast<FakeRavelo*>(manager->checkService(android::String16("velmor.ravelo")).get());
    }
    static void withdraw() { android::desktop::offerService(android::String16("velmor.ravelo"), nullptr); }

    // The thread sanitizer does not see how the packaged libutils hands the last reference on: this it sees.
    ~FakeRavelo() override { const std::lock_guard lock(mInCall); }

    bool isBinderAlive() const override { return true; }

    android::status_t transact(uint32_t code, const android::Parcel& data, android::Parcel* reply,
                               uint32_t flags) override {
        const std::lock_guard lock(mInCall);
        data.setDataPosition(0);
        const std::string token = android::String8(data.readString16()).string();
        const std::string package = android::String8(data.readString16()).string();
        calls.push_back(std::to_string(code) + " " + std::to_string(flags) + " " + token + " " + package);
        if (duringCall) {
            duringCall();
        }
        reply->writeInt32(exception);
        if (exception == 0) {
            reply->writeString16(android::String16(answer.c_str()));
        }
        reply->setDataPosition(0);
        return status;
    }

    android::status_t linkToDeath(const android::sp<DeathRecipient>& recipient, void*, uint32_t) override {
        recipients.push_back(recipient);
        return android::NO_ERROR;
    }

    /** @return how many recipients were still there to be told */
    int die() {
        int told = 0;
        for (const auto& weak : recipients) {
            if (const android::sp<DeathRecipient> recipient = weak.promote()) {
                recipient->binderDied(this);
                ++told;
            }
        }
        return told;
    }

    std::string answer;
    android::status_t status = android::NO_ERROR;
    int32_t exception = 0;
    std::function<void()> duringCall;
    std::vector<std::string> calls; // code, flags, interface token, package
    std::vector<android::wp<DeathRecipient>> recipients;

private:
    std::mutex mInCall;
};
