// The client's end of a service behind a socket.
#include "DesktopBinder.h"
#include "SocketFrames.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace android::desktop {

namespace {

struct Answer {
    int32_t status;
    std::vector<uint8_t> bytes;
};

/** Shared by the binder and its reader thread; the last of the two to leave closes the socket. */
struct Connection {
    explicit Connection(int socket) : fd(socket) {}
    ~Connection() { close(fd); }

    /** Reader thread: hands answers over until the service is gone. @return who is to be told of its death */
    std::vector<wp<IBinder::DeathRecipient>> readUntilDeath() {
        AnswerHeader header{};
        while (receiveAll(fd, &header, sizeof header) && header.bytes <= kMaxTransactionBytes) {
            Answer received{header.status, std::vector<uint8_t>(header.bytes)};
            if (!receiveAll(fd, received.bytes.data(), header.bytes)) {
                break;
            }
            const std::lock_guard lock(mutex);
            answer = std::make_unique<Answer>(std::move(received));
            changed.notify_all();
        }
        const std::lock_guard lock(mutex);
        dead = true;
        changed.notify_all();
        return std::move(recipients);
    }

    const int fd;
    std::mutex calls; // one call at a time
    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::unique_ptr<Answer> answer;
    bool dead = false;
    std::vector<wp<IBinder::DeathRecipient>> recipients;
};

class SocketBinder : public IBinder {
public:
    explicit SocketBinder(int fd) : mConnection(std::make_shared<Connection>(fd)) {}

    void startReader() {
        // Detached: the last reference to this binder may be dropped by a recipient, that is, on this very thread.
        std::thread([connection = mConnection, self = wp<IBinder>(this)] {
            for (const auto& recipient : connection->readUntilDeath()) {
                if (const sp<DeathRecipient> alive = recipient.promote()) {
                    alive->binderDied(self);
                }
            }
        }).detach();
    }

    bool isBinderAlive() const override {
        const std::lock_guard lock(mConnection->mutex);
        return !mConnection->dead;
    }

    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) override {
        const status_t status = call(code, data, reply, flags);
        BinderTrace& trace = binderTrace();
        trace.transactions++;
        trace.lastCode = static_cast<int32_t>(code);
        trace.lastStatus = status;
        if (reply) {
            reply->setDataPosition(0);
            trace.lastReplyBytes = static_cast<int32_t>(reply->dataSize());
            trace.lastException = reply->readInt32();
            reply->setDataPosition(0);
        }
        return status;
    }

    status_t linkToDeath(const sp<DeathRecipient>& recipient, void*, uint32_t) override {
        const std::lock_guard lock(mConnection->mutex);
        if (mConnection->dead) {
            return DEAD_OBJECT;
        }
        mConnection->recipients.push_back(recipient);
        return NO_ERROR;
    }

private:
    ~SocketBinder() override {
        {
            const std::lock_guard lock(mConnection->mutex);
            mConnection->recipients.clear(); // nobody is told of a binder that was let go
        }
        if (mProcess == getpid()) {               // a forked child shares the connection with its parent, who needs it
            shutdown(mConnection->fd, SHUT_RDWR); // ends the reader
        }
    }

    status_t call(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) {
        if (data.dataSize() > kMaxTransactionBytes) {
            return FAILED_TRANSACTION;
        }
        const std::lock_guard oneCall(mConnection->calls);
        const CallHeader header{static_cast<uint32_t>(data.dataSize()), code, flags};
        if (!sendAll(mConnection->fd, &header, sizeof header) ||
            !sendAll(mConnection->fd, data.data(), data.dataSize())) {
            return DEAD_OBJECT;
        }
        std::unique_lock lock(mConnection->mutex);
        mConnection->changed.wait(lock, [this] { return mConnection->answer || mConnection->dead; });
        const std::unique_ptr<Answer> answer = std::move(mConnection->answer);
        if (!answer) {
            return DEAD_OBJECT;
        }
        if (reply) {
            reply->setData(answer->bytes.data(), answer->bytes.size());
        }
        return answer->status;
    }

    const std::shared_ptr<Connection> mConnection;
    const pid_t mProcess = getpid();
};

} // namespace

sp<IBinder> connectToService(const std::string& root, const std::string& name) {
    const int fd = openServiceSocket(root, name, SocketEnd::CONNECT);
    if (fd < 0) {
        return nullptr;
    }
    sp<SocketBinder> binder = new SocketBinder(fd);
    binder->startReader();
    return binder;
}

} // namespace android::desktop
