// Binder, as far as a client of one service needs it: synchronous transactions and death notices. Names and
// signatures are those of the device's headers, so that client code builds for both.
#pragma once

#include <cstdint>
#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/String16.h>

namespace android {

class Parcel;

class IBinder : public virtual RefBase {
public:
    /** Told once when the process that serves a binder has died. Binders hold their recipients weakly. */
    class DeathRecipient : public virtual RefBase {
    public:
        /** Runs on a thread of the binder layer. */
        virtual void binderDied(const wp<IBinder>& who) = 0;
    };

    virtual bool isBinderAlive() const = 0;

    /**
     * Sends data and waits for the answer.
     * @param reply receives the answer's parcel, read position at its start
     * @return NO_ERROR, DEAD_OBJECT when the service is gone, FAILED_TRANSACTION when data or reply exceed 1 MiB
     */
    virtual status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0) = 0;

    /** @return NO_ERROR, or DEAD_OBJECT when the service has died already (the recipient is then not told) */
    virtual status_t linkToDeath(const sp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0) = 0;
};

} // namespace android
