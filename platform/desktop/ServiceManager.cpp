#include <binder/IServiceManager.h>

#include "DesktopBinder.h"
#include "DesktopRoot.h"

#include <utils/String8.h>

#include <map>
#include <mutex>

namespace android {

namespace {

std::mutex sMutex;

std::map<String16, sp<IBinder>>& ownServices() {
    static auto* services = new std::map<String16, sp<IBinder>>; // never destroyed: may be asked at exit
    return *services;
}

class DesktopServiceManager : public IServiceManager {
public:
    sp<IBinder> checkService(const String16& name) const override {
        sp<IBinder> service = find(name);
        desktop::binderTrace().lookups++;
        desktop::binderTrace().found += service ? 1 : 0;
        return service;
    }

private:
    static sp<IBinder> find(const String16& name) {
        {
            const std::lock_guard lock(sMutex);
            const auto own = ownServices().find(name);
            if (own != ownServices().end()) {
                return own->second;
            }
        }
        const std::string root = desktop::underRoot("");
        return root.empty() ? nullptr : desktop::connectToService(root, String8(name).string());
    }
};

} // namespace

sp<IServiceManager> defaultServiceManager() {
    static auto* manager = new sp<IServiceManager>(new DesktopServiceManager);
    return *manager;
}

void desktop::offerService(const String16& name, const sp<IBinder>& service) {
    const std::lock_guard lock(sMutex);
    if (service) {
        ownServices()[name] = service;
    } else {
        ownServices().erase(name);
    }
}

desktop::BinderTrace& desktop::binderTrace() {
    static BinderTrace trace;
    return trace;
}

} // namespace android
