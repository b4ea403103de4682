#include "base/OrvelNameSet.h"

#include <gtest/gtest.h>

// Catches a name that is lost, or stays, because another one shares its bit.
TEST(NameSet, KeepsNamesApart) {
    android::orvel::OrvelNameSet names;
    for (const uint32_t name : {0u, 7u, 7u + 1024u, ~0u}) {
        EXPECT_FALSE(names.has(name));
        names.insert(name);
        EXPECT_TRUE(names.has(name));
    }
    EXPECT_FALSE(names.has(7 + 2048));
    names.erase(7);
    EXPECT_FALSE(names.has(7));
    EXPECT_TRUE(names.has(7 + 1024));
    names.clear();
    EXPECT_FALSE(names.has(7 + 1024));
}
