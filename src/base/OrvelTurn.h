// A reader-writer spin lock without fairness, for records that a game's threads share: writers (OrvelTurn) wait or try,
// readers (OrvelLook) only try. It is not recursive, and to WAIT for a turn while holding a look on the same thread
// spins for ever.
//
// Games load on threads of their own, which bind, label and delete what the drawing thread uses, and nothing orders
// their calls and its own.
#pragma once

#include <atomic>
#include <cstdint>
#include <sched.h>

namespace android::orvel {

/** What the threads take turns at. */
class OrvelTurns {
    friend class OrvelTurn;
    friend class OrvelLook;
    std::atomic<const void*> mHolder{nullptr};             // the thread that changes the records
    std::atomic<int32_t> mLooking{0};                      // threads that look something up
    static inline constinit thread_local char sThread = 0; // its address tells threads apart
};

/**
 * The right to change the records, for as long as the object lives; test whether there is one. Changes are rare and
 * WAIT for each other and for those who look; ASK goes without instead. The thread that has a turn gets no second one:
 * a driver or a logger may call the game back from within our calls, and the game us; what it does there goes
 * unrecorded.
 */
class [[nodiscard]] OrvelTurn {
public:
    enum Mode { ASK, WAIT };

    OrvelTurn(OrvelTurns& turns, Mode mode) noexcept : mTurns(turns), mTaken(take(mode)) {
        while (mTaken && turns.mLooking.load() != 0) { // those who come now see the turn and do without
            if (mode == ASK) {
                mTaken = false;
                turns.mHolder.store(nullptr, std::memory_order_release);
            } else {
                sched_yield();
            }
        }
    }
    ~OrvelTurn() {
        if (mTaken) {
            mTurns.mHolder.store(nullptr, std::memory_order_release);
        }
    }
    OrvelTurn(const OrvelTurn&) = delete;
    OrvelTurn& operator=(const OrvelTurn&) = delete;
    explicit operator bool() const { return mTaken; }

private:
    bool take(Mode mode) noexcept {
        const void* holder = nullptr;
        while (!mTurns.mHolder.compare_exchange_strong(holder, &OrvelTurns::sThread)) {
            if (mode == ASK || holder == &OrvelTurns::sThread) {
                return false;
            }
            holder = nullptr;
            sched_yield();
        }
        return true;
    }

    OrvelTurns& mTurns;
    bool mTaken;
};

/**
 * The right to look something up, for as long as the object lives; any number of threads look at once. A draw must
 * never wait: while another thread changes the records it goes without, so test. Change nothing, call nobody and take
 * no turn meanwhile.
 */
class [[nodiscard]] OrvelLook {
public:
    explicit OrvelLook(OrvelTurns& turns) noexcept : mTurns(turns) {
        // Either this thread sees the one that has the turn, or that one sees this: both write first, then read.
        turns.mLooking.fetch_add(1);
        const void* const holder = turns.mHolder.load();
        mMay = !holder || holder == &OrvelTurns::sThread;
    }
    ~OrvelLook() { mTurns.mLooking.fetch_sub(1, std::memory_order_release); }
    OrvelLook(const OrvelLook&) = delete;
    OrvelLook& operator=(const OrvelLook&) = delete;
    explicit operator bool() const { return mMay; }

private:
    OrvelTurns& mTurns;
    bool mMay;
};

} // namespace android::orvel
