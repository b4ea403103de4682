// Names of GL objects, asked for at every bind.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <unordered_set>

namespace android::orvel {

/**
 * A Bloom filter with one hash: tells by one bit that a name was never added; names share bits, so it may be wrong
 * about one that seems to be there.
 */
class OrvelNameFilter {
public:
    bool mayHave(uint32_t name) const { return mBits[name % kBits]; }
    void add(uint32_t name) { mBits.set(name % kBits); }
    void clear() { mBits.reset(); }

private:
    static constexpr size_t kBits = 1024; // drivers give small names out first

    std::bitset<kBits> mBits;
};

/** Nearly every bind is of a name that is not there: a look at one bit says so. */
class OrvelNameSet {
public:
    bool has(uint32_t name) const { return mMaybe.mayHave(name) && find(name); }

    /** @throw std::bad_alloc */
    void insert(uint32_t name) {
        mNames.insert(name);
        mMaybe.add(name);
    }
    /** The name's bit stays: it may be another one's, too. */
    void erase(uint32_t name) { mNames.erase(name); }
    void clear() {
        mNames.clear();
        mMaybe.clear();
    }

private:
    /** Not inline: the look at the bit alone then costs a hook no registers. */
    [[gnu::noinline]] bool find(uint32_t name) const { return mNames.count(name) != 0; }

    std::unordered_set<uint32_t> mNames;
    OrvelNameFilter mMaybe;
};

} // namespace android::orvel
