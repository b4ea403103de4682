// Whole messages over a stream socket.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace android::desktop {

struct CallHeader {
    uint32_t bytes;
    uint32_t code;
    uint32_t flags;
};

struct AnswerHeader {
    uint32_t bytes;
    int32_t status;
};

/** @return false when the peer is gone */
bool sendAll(int fd, const void* data, size_t length);
bool receiveAll(int fd, void* data, size_t length);

/** A file descriptor that closes itself. */
class ScopedFd {
public:
    explicit ScopedFd(int fd) : mFd(fd) {}
    ~ScopedFd();
    ScopedFd(const ScopedFd&) = delete;
    ScopedFd& operator=(const ScopedFd&) = delete;
    int get() const { return mFd; }
    int release();

private:
    int mFd;
};

enum class SocketEnd { LISTEN, CONNECT };

/**
 * Binds or connects a socket at root/dev/binder/name. A socket address holds 107 bytes and a root may be longer, so
 * the folder is opened and the socket reached through the descriptor's name.
 * @return the descriptor, or -1 with errno set
 */
int openServiceSocket(const std::string& root, const std::string& name, SocketEnd end);

} // namespace android::desktop
