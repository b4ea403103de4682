// Finds services by name. See IBinder.h.
#pragma once

#include <binder/IBinder.h>

namespace android {

class IServiceManager : public virtual RefBase {
public:
    /** @return the service, or null at once when no process offers it */
    virtual sp<IBinder> checkService(const String16& name) const = 0;
};

/** @return the process's only service manager; never null */
sp<IServiceManager> defaultServiceManager();

} // namespace android
