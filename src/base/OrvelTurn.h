// One thread at a time at a feature's records. Games load on threads of their own, which bind, label and delete what
// the drawing thread uses, and nothing orders their calls and its own.
#pragma once

#include <atomic>
#include <sched.h>

namespace android::orvel {

/** What the threads take turns at. */
class OrvelTurns {
    friend class OrvelTurn;
    std::atomic<const void*> mHolder{nullptr};
};

/**
 * A turn, for as long as the object lives; test whether there is one. What a game does thousands of times a frame asks
 * once and goes without, since a draw must never wait; what is recorded is then overlooked for that call. What records,
 * which is rare, waits. There is no second turn for the thread that has one: a driver may call the game
 * back from within our calls, and the game us.
 */
class [[nodiscard]] OrvelTurn {
public:
    enum Mode { ASK, WAIT };

    OrvelTurn(OrvelTurns& turns, Mode mode) noexcept : mTurns(turns) {
        const void* holder = nullptr;
        while (!(mTaken = turns.mHolder.compare_exchange_strong(holder, &sThread, std::memory_order_acquire,
                                                                std::memory_order_relaxed)) &&
               mode == WAIT && holder != &sThread) {
            holder = nullptr;
            sched_yield();
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
    static inline constinit thread_local char sThread = 0; // its address tells threads apart

    OrvelTurns& mTurns;
    bool mTaken;
};

} // namespace android::orvel
