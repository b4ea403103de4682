#include "base/OrvelTurn.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <thread>

using android::orvel::OrvelLook;
using android::orvel::OrvelTurn;
using android::orvel::OrvelTurns;

// Catches a thread that waits for itself, a draw that waits, and records that two threads change at once or that change
// while somebody looks.
TEST(Turn, IsOneThreadsAtATime) {
    OrvelTurns turns;
    std::atomic<int> step{0};
    std::optional<OrvelTurn> turn(std::in_place, turns, OrvelTurn::ASK);
    ASSERT_TRUE(*turn);
    EXPECT_FALSE(OrvelTurn(turns, OrvelTurn::WAIT)) << "called back by the driver";
    EXPECT_TRUE(OrvelLook(turns));
    std::thread loader([&] {
        EXPECT_FALSE(OrvelTurn(turns, OrvelTurn::ASK));
        EXPECT_FALSE(OrvelLook(turns));
        step = 1;
        step.notify_one();
        EXPECT_TRUE(OrvelTurn(turns, OrvelTurn::WAIT));
        step = 2;
        step.notify_one();
    });
    step.wait(0);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(step, 1);
    turn.reset();
    step.wait(1);
    loader.join();

    int records = 0;
    int seen = 0;
    const auto record = [&] {
        for (int i = 0; i < 1000; ++i) {
            const OrvelTurn mine(turns, OrvelTurn::WAIT);
            ++records;
        }
    };
    std::thread other(record);
    record();
    for (int i = 0; i < 1000; ++i) {
        if (const OrvelLook look(turns); look) {
            seen = records;
        }
    }
    other.join();
    EXPECT_LE(seen, records);
    EXPECT_EQ(records, 2000);
    const OrvelLook look(turns);
    std::thread([&] { EXPECT_FALSE(OrvelTurn(turns, OrvelTurn::ASK)) << "a draw waits for nobody"; }).join();
}
