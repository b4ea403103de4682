#include "base/OrvelPatternList.h"
#include "base/OrvelTextMemo.h"

#include <gmock/gmock.h>

using namespace android::orvel;
using testing::ElementsAre;

// Catches an order that is not the list's, a bad pattern that moves the others, and pieces that stay double or empty.
TEST(PatternList, FindsTheFirstMatch) {
    EXPECT_THAT(OrvelPatternList::split("b|a||b|a|"), ElementsAre("b", "a"));
    OrvelPatternList list({"a.*", "(", "ab"});
    list.append({"\\d+", ".*"});
    EXPECT_EQ(list.size(), 5u);
    EXPECT_EQ(list.find("ab"), 0);
    EXPECT_EQ(list.find("12"), 3);
    EXPECT_EQ(list.find("("), 4);
    EXPECT_EQ(list.find("\n"), OrvelPatternList::kNone);
    EXPECT_EQ(OrvelPatternList().find(""), OrvelPatternList::kNone);
}

// Catches a text that pays again, an answer that is another text's, and a memo that grows without end, forgets
// when it is full, or keeps a text of any length.
TEST(TextMemo, LooksUpOnce) {
    OrvelTextMemo memo;
    int lookUps = 0;
    const auto sizeOf = [&](const std::string& text) {
        return memo.find(text, [&](std::string_view asked) {
            ++lookUps;
            return static_cast<int>(asked.size());
        });
    };
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(sizeOf("one"), 3);
        EXPECT_EQ(sizeOf("three"), 5);
    }
    EXPECT_EQ(lookUps, 2);
    const std::string tooLong(257, 'x');
    sizeOf(tooLong);
    EXPECT_EQ(sizeOf(tooLong), 257);
    EXPECT_EQ(lookUps, 4);
    constexpr int kTexts = 20'000;
    for (int i = 0; i < kTexts; ++i) {
        EXPECT_EQ(sizeOf(std::string(static_cast<size_t>(i % 200), 'y') + std::to_string(i)),
                  i % 200 + static_cast<int>(std::to_string(i).size()));
    }
    EXPECT_EQ(lookUps, 4 + kTexts);
    EXPECT_EQ(sizeOf("one"), 3);
    EXPECT_EQ(sizeOf("yyy3"), 4);
    EXPECT_EQ(lookUps, 4 + kTexts) << "forgotten for new ones";
    EXPECT_EQ(sizeOf(std::string(199, 'y') + "19999"), 204);
    EXPECT_EQ(lookUps, 4 + kTexts + 1) << "more than there is room for";
}
