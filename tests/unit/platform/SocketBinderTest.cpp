// The desktop's binder: what the library may rely on is what a device promises.
#include "DesktopBinder.h"

#include <binder/IServiceManager.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace android;
using namespace android::desktop;
using namespace std::chrono_literals;

namespace {

constexpr char kName[] = "test.service";

/** A service under a root of its own, whose path is too long for a socket address. */
class SocketBinderTest : public testing::Test {
protected:
    void SetUp() override {
        mRoot = testing::TempDir() + "orvel-binder-" + std::to_string(getpid()) + "/" + std::string(120, 'r');
        std::filesystem::create_directories(mRoot);
        setenv("ORVEL_ROOT", mRoot.c_str(), 1);
    }

    void TearDown() override {
        stop();
        std::filesystem::remove_all(std::filesystem::path(mRoot).parent_path());
    }

    void stop() {
        if (mService.joinable()) {
            shutdown(mListener, SHUT_RDWR);
            mService.join();
            close(mListener);
        }
    }

    static sp<IBinder> find() { return defaultServiceManager()->checkService(String16(kName)); }

    std::string mRoot;
    int mListener = -1;
    std::thread mService;
};

/** A service that takes one client, reads some of its call and closes the connection. */
void serveAndDie(int listener) {
    const int client = accept(listener, nullptr, nullptr);
    char byte;
    recv(client, &byte, 1, 0);
    close(client);
}

class Recipient : public IBinder::DeathRecipient {
public:
    explicit Recipient(std::promise<void>& died) : mDied(died) {}
    void binderDied(const wp<IBinder>&) override { mDied.set_value(); }

private:
    std::promise<void>& mDied;
};

} // namespace

// Catches texts that lose characters on the way, and answers that reach the wrong call.
TEST_F(SocketBinderTest, CarriesNumbersAndTextsBothWays) {
    mListener = listenAsService(mRoot, kName);
    ASSERT_GE(mListener, 0);
    mService = std::thread([this] {
        serveClients(mListener, [](uint32_t code, const Parcel& data, Parcel* reply) {
            const String16 token = data.readString16();
            reply->writeInt32(data.readInt32() + static_cast<int32_t>(code));
            reply->writeString16(token + data.readString16());
            return status_t(NO_ERROR);
        });
    });
    const sp<IBinder> binder = find();
    ASSERT_NE(binder, nullptr);
    for (int32_t i = 0; i < 3; ++i) {
        Parcel request;
        Parcel reply;
        request.writeInterfaceToken(String16(u"tøken"));
        request.writeInt32(i);
        request.writeString16(String16(u"-\u4f60\u597d"));
        ASSERT_EQ(binder->transact(13, request, &reply), NO_ERROR);
        EXPECT_EQ(reply.readExceptionCode(), i + 13);
        EXPECT_EQ(reply.readString16(), String16(u"tøken-\u4f60\u597d"));
        EXPECT_EQ(reply.readInt32(), 0) << "reading past the end";
        EXPECT_EQ(reply.readString16(), String16());
    }
}

// Catches a caller that waits for ever, and a notice that is lost or sent to a recipient nobody holds.
TEST_F(SocketBinderTest, DeathEndsTheCallAndIsTold) {
    mListener = listenAsService(mRoot, kName);
    mService = std::thread([this] { serveAndDie(mListener); });
    std::promise<void> died;
    std::promise<void> told;
    sp<IBinder> binder = find();
    const sp<Recipient> held = new Recipient(died);
    EXPECT_EQ(binder->linkToDeath(new Recipient(told)), NO_ERROR); // gone at once: binders hold recipients weakly
    EXPECT_EQ(binder->linkToDeath(held), NO_ERROR);                // told after the other, had that one lived
    Parcel request;
    Parcel reply;
    EXPECT_EQ(binder->transact(1, request, &reply), DEAD_OBJECT);
    ASSERT_EQ(died.get_future().wait_for(10s), std::future_status::ready);
    EXPECT_EQ(told.get_future().wait_for(0s), std::future_status::timeout);
    EXPECT_FALSE(binder->isBinderAlive());
    EXPECT_EQ(binder->linkToDeath(held), DEAD_OBJECT);
}

// Catches a binder that joins its own reader when the recipient drops the last reference to it.
TEST_F(SocketBinderTest, MayBeReleasedByItsRecipient) {
    struct Releasing : IBinder::DeathRecipient {
        void binderDied(const wp<IBinder>&) override {
            mBinder.clear();
            mReleased.set_value();
        }
        sp<IBinder> mBinder;
        std::promise<void> mReleased;
    };
    mListener = listenAsService(mRoot, kName);
    const sp<Releasing> recipient = new Releasing;
    recipient->mBinder = find();
    recipient->mBinder->linkToDeath(recipient);
    const int client = accept(mListener, nullptr, nullptr);
    close(client);
    EXPECT_EQ(recipient->mReleased.get_future().wait_for(10s), std::future_status::ready);
    close(mListener);
}
