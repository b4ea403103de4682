// The service's end of a socket.
#include "DesktopBinder.h"
#include "SocketFrames.h"

#include <cerrno>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace android::desktop {

namespace {

void serveClient(int socket, const CallHandler& handler) {
    const ScopedFd fd(socket);
    CallHeader header{};
    while (receiveAll(fd.get(), &header, sizeof header) && header.bytes <= kMaxTransactionBytes) {
        std::vector<uint8_t> bytes(header.bytes);
        if (!receiveAll(fd.get(), bytes.data(), header.bytes)) {
            return;
        }
        Parcel data;
        Parcel reply;
        data.setData(bytes.data(), bytes.size());
        AnswerHeader answer{0, handler(header.code, data, &reply)};
        if (reply.dataSize() > kMaxTransactionBytes) {
            answer.status = FAILED_TRANSACTION;
        } else {
            answer.bytes = static_cast<uint32_t>(reply.dataSize());
        }
        if (!sendAll(fd.get(), &answer, sizeof answer) || !sendAll(fd.get(), reply.data(), answer.bytes)) {
            return;
        }
    }
}

} // namespace

int listenAsService(const std::string& root, const std::string& name) {
    return openServiceSocket(root, name, SocketEnd::LISTEN);
}

void serveClients(int listener, const CallHandler& handler) {
    for (;;) {
        const int client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0 && (errno == EINTR || errno == ECONNABORTED)) {
            continue;
        }
        if (client < 0) {
            return;
        }
        try {
            std::thread([client, handler] { serveClient(client, handler); }).detach();
        } catch (const std::system_error&) { // no thread for this one
            close(client);
        }
    }
}

} // namespace android::desktop
