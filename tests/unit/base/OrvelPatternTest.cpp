#include "base/OrvelPattern.h"

#include "LogCapture.h"

#include <gmock/gmock.h>

#include <pthread.h>

using android::orvel::OrvelPattern;
using testing::ElementsAre;
using testing::StartsWith;

// Catches a search in place of a full match, and a bad pattern that throws or is not named in the log.
TEST(Pattern, MatchesInFull) {
    const LogCapture log;
    EXPECT_TRUE(OrvelPattern(".*Main_color.*").matches("x_Main_color_1"));
    EXPECT_FALSE(OrvelPattern("Main_color").matches("x_Main_color"));
    EXPECT_TRUE(OrvelPattern("").matches(""));
    EXPECT_TRUE(OrvelPattern("[^a]+").matches("\xff\xfe\n")) << "labels are any bytes";
    EXPECT_TRUE(OrvelPattern(std::string(1024, 'a')).isValid());
    const OrvelPattern bad("(unclosed");
    EXPECT_FALSE(bad.isValid());
    EXPECT_FALSE(bad.matches("(unclosed"));
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR), ElementsAre(StartsWith("bad pattern \"(unclosed\": ")));
}

// Catches numbers that overflow in the library's reader, and others that are refused with them.
TEST(Pattern, RefusesNumbersThatFitNowhere) {
    const LogCapture log;
    for (const char* bad : {"a{1111111111}", "a{1,99999999999999999999}", "(a)\\4294967297", "a{1111111111"}) {
        EXPECT_FALSE(OrvelPattern(bad).isValid()) << bad;
    }
    EXPECT_EQ(log.texts(ANDROID_LOG_ERROR).size(), 4u);
    EXPECT_TRUE(OrvelPattern("\\{1111111111,2222222222").matches("{1111111111,2222222222"));
    EXPECT_TRUE(OrvelPattern("(a{1,3})\\1").matches("aaaa"));
}

// Catches a label or a pattern that overflows a game thread's stack or never ends.
TEST(Pattern, StandsLongTextsOnSmallStacks) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 * 1024);
    const auto match = [](void*) -> void* {
        const std::string label(50'000, 'a');
        EXPECT_TRUE(OrvelPattern(".*a").matches(label));
        EXPECT_FALSE(OrvelPattern("(a*)*b").matches(label.substr(0, 2000)));
        const OrvelPattern twice("(a.*)\\1");
        EXPECT_TRUE(twice.matches("ab ab "));
        EXPECT_TRUE(twice.matches(label.substr(0, 64)));
        EXPECT_FALSE(twice.matches(label.substr(0, 66))); // may take exponential time
        const LogCapture log;                             // of the last one
        EXPECT_FALSE(OrvelPattern(label).isValid());
        EXPECT_THAT(log.texts(ANDROID_LOG_ERROR), ElementsAre(StartsWith("bad pattern \"aaa")));
        return nullptr;
    };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, match, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

// Catches a pattern whose literal pieces decide otherwise than a matcher would.
TEST(Pattern, IsDecidedAsAMatcherDoes) {
    const char* const patterns[] = {
        "",          "abc",     ".*",     ".*b.*",    "a.*c",          "a.*b.*c",  "a.c",     "ab*c",
        "ab?c",      "a(b|x)c", "ab|c",   "^abc$",    "a[b.]c",        "a[^]]c",   "a\\.c",   "a\\dc",
        "a.*?c",     "ab+?c",   "a{2}b",  "a{0,1}bc", "a[[:alpha:]]c", "(?=a).*",  "a\\x62c", "a\\bc",
        ".*\\.png",  "(a)\\1",  ".*abc",  "abc.*",    "a.*a",          "ab.*bc",   "a\\x2ec", "a\\\\c",
        "\\Bb",      "a\\tc",   "a\\cJc", "a[\\]b]c", "a]c",           "a.{0,2}c", ".+",      "[]abc",
        "[\\c]x[y]", "a**",     "a*??",   "a\\rc",    "[^\\r]*",
    };
    const char* const texts[] = {"",       "a",     "aa",    "aba",  "abc",    "abbc", "ac",   "a.c",    "axc", "a7c",
                                 "abcabc", "xabcx", "aab",   "bc",   "ab",     "c",    "a\nc", "ab\nbc", "\n",  "a]c",
                                 "a\\c",   "abbbc", "x.png", "a\tc", "a\377c", "y",    "a\rc", "\r"};
    for (const char* pattern : patterns) {
        const LogCapture log; // of patterns that are none
        std::optional<std::regex> plain;
        try {
            plain.emplace(pattern);
        } catch (const std::regex_error&) {
        }
        const OrvelPattern ours(pattern);
        EXPECT_EQ(ours.isValid(), plain.has_value()) << pattern;
        for (const char* text : texts) {
            EXPECT_EQ(ours.matches(text), plain && std::regex_match(text, *plain)) << pattern << " and " << text;
        }
    }
}
