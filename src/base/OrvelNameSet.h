// Names of GL objects, asked for at every bind.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <unordered_set>

namespace android::orvel {

/** Nearly every bind is of a name that is not there: a look at one bit says so. */
class OrvelNameSet {
public:
    bool has(uint32_t name) const { return mMaybe[name % kBits] && find(name); }

    /** @throw std::bad_alloc */
    void insert(uint32_t name) {
        mNames.insert(name);
        mMaybe.set(name % kBits);
    }
    /** The name's bit stays: it may be another one's, too. */
    void erase(uint32_t name) { mNames.erase(name); }
    void clear() {
        mNames.clear();
        mMaybe.reset();
    }

private:
    static constexpr size_t kBits = 1024; // drivers give small names out first

    /** Not inline: the look at the bit alone then costs a hook no registers. */
    [[gnu::noinline]] bool find(uint32_t name) const { return mNames.count(name) != 0; }

    std::unordered_set<uint32_t> mNames;
    std::bitset<kBits> mMaybe;
};

} // namespace android::orvel
