#include "base/OrvelTurn.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using android::orvel::OrvelTurn;
using android::orvel::OrvelTurns;

// Catches a thread that waits for itself, a draw that waits, and records that two threads change at once.
TEST(Turn, IsOneThreadsAtATime) {
    OrvelTurns turns;
    std::atomic<bool> asked{false};
    std::atomic<bool> recorded{false};
    std::thread loader;
    {
        const OrvelTurn turn(turns, OrvelTurn::ASK);
        ASSERT_TRUE(turn);
        EXPECT_FALSE(OrvelTurn(turns, OrvelTurn::WAIT)) << "called back by the driver";
        loader = std::thread([&] {
            EXPECT_FALSE(OrvelTurn(turns, OrvelTurn::ASK));
            asked = true;
            asked.notify_one();
            EXPECT_TRUE(OrvelTurn(turns, OrvelTurn::WAIT));
            recorded = true;
        });
        asked.wait(false);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_FALSE(recorded);
    }
    loader.join();
    int records = 0;
    const auto record = [&] {
        for (int i = 0; i < 1000; ++i) {
            const OrvelTurn turn(turns, OrvelTurn::WAIT);
            ++records;
        }
    };
    std::thread other(record);
    record();
    other.join();
    EXPECT_EQ(records, 2000);
}
