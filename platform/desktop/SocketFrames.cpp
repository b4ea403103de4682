#include "SocketFrames.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace android::desktop {

bool sendAll(int fd, const void* data, size_t length) {
    const auto* bytes = static_cast<const char*>(data);
    while (length > 0) {
        const ssize_t sent = send(fd, bytes, length, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent <= 0) {
            return false;
        }
        bytes += sent;
        length -= static_cast<size_t>(sent);
    }
    return true;
}

bool receiveAll(int fd, void* data, size_t length) {
    auto* bytes = static_cast<char*>(data);
    while (length > 0) {
        const ssize_t received = recv(fd, bytes, length, 0);
        if (received < 0 && errno == EINTR) {
            continue;
        }
        if (received <= 0) {
            return false;
        }
        bytes += received;
        length -= static_cast<size_t>(received);
    }
    return true;
}

ScopedFd::~ScopedFd() {
    if (mFd >= 0) {
        close(mFd);
    }
}

int ScopedFd::release() {
    const int fd = mFd;
    mFd = -1;
    return fd;
}

int openServiceSocket(const std::string& root, const std::string& name, SocketEnd end) {
    if (end == SocketEnd::LISTEN) {
        mkdir((root + "/dev").c_str(), 0777);
        mkdir((root + "/dev/binder").c_str(), 0777);
    }
    const ScopedFd folder(open((root + "/dev/binder").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (folder.get() < 0) {
        return -1;
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const int length =
        snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", folder.get(), name.c_str());
    if (length < 0 || static_cast<size_t>(length) >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    ScopedFd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (fd.get() < 0) {
        return -1;
    }
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    if (end == SocketEnd::CONNECT) {
        return connect(fd.get(), generic, sizeof address) == 0 ? fd.release() : -1;
    }
    unlink(address.sun_path); // left behind by a service that was killed
    const bool listening = bind(fd.get(), generic, sizeof address) == 0 && listen(fd.get(), SOMAXCONN) == 0;
    return listening ? fd.release() : -1;
}

} // namespace android::desktop
