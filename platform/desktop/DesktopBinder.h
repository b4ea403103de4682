// Binder on a desktop: services of this process (tests), services behind a Unix stream socket (the tuning service),
// and a record of what the process's calls came to.
//
// A service NAME listens at dev/binder/NAME under the system root. A call is one frame: byte count of the parcel,
// code, flags, then the parcel; an answer is: byte count of the parcel, status, then the parcel. All numbers are
// 32-bit in host order: both ends run on one machine.
#pragma once

#include <binder/IBinder.h>
#include <binder/Parcel.h>

#include <atomic>
#include <functional>
#include <string>

namespace android::desktop {

/** The most that a parcel may hold, in bytes, in either direction; a call that exceeds it fails, as on a device. */
constexpr uint32_t kMaxTransactionBytes = 1024 * 1024;

/** Makes checkService find a service inside this process; null withdraws it. It wins over a socket. */
void offerService(const String16& name, const sp<IBinder>& service);

/** What this process's binder calls came to so far. */
struct BinderTrace {
    std::atomic<int32_t> lookups{0}; // calls of checkService
    std::atomic<int32_t> found{0};   // of these, answered with a service
    std::atomic<int32_t> transactions{0};
    std::atomic<int32_t> lastCode{0};
    std::atomic<int32_t> lastStatus{0};    // status_t
    std::atomic<int32_t> lastException{0}; // first number of the last answer
    std::atomic<int32_t> lastReplyBytes{0};
};
BinderTrace& binderTrace();

/** Answers one call on a thread of its client: returns the status, fills the reply. */
using CallHandler = std::function<status_t(uint32_t code, const Parcel& data, Parcel* reply)>;

/**
 * Listens as the service of that name under root.
 * @return the listening descriptor, or -1 with errno set
 */
int listenAsService(const std::string& root, const std::string& name);

/** Serves clients of a listening descriptor, one thread each, until the descriptor is shut down. */
void serveClients(int listener, const CallHandler& handler);

/** Connects to a service's socket. @return a binder, or null when nobody listens there */
sp<IBinder> connectToService(const std::string& root, const std::string& name);

} // namespace android::desktop
