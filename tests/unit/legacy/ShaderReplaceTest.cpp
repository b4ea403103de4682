#include "legacy/ShaderReplace.h"

#include "LogCapture.h"
#include "settings/orvel_modify_params.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace android;
using testing::ElementsAre;

namespace {

/** What replaceShader makes of text, in a buffer with room behind it. */
std::string replaced(const std::string& text, const char* from, const char* to) {
    char buffer[256] = {};
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    replaceShader(buffer, from, to);
    return buffer;
}

struct Replacement {
    const char* text;
    const char* from;
    const char* to;
    const char* expected;
};

class ReplaceShader : public testing::TestWithParam<Replacement> {};

} // namespace

// Catches wrong indices at the ends and between neighbours, and a length rule that looks at the wrong text.
TEST_P(ReplaceShader, EditsInPlace) {
    EXPECT_EQ(replaced(GetParam().text, GetParam().from, GetParam().to), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Texts, ReplaceShader,
                         testing::Values(Replacement{"mediump", "mediump", "lowp", "lowp"},
                                         Replacement{"precision mediump float;\nmediump vec2 a;", "mediump", "lowp",
                                                     "precision lowp float;\nlowp vec2 a;"},
                                         Replacement{"mediumpmediumpx", "mediump", "lowp", "lowplowpx"},
                                         Replacement{"my_mediumpValue", "mediump", "lowp", "my_lowpValue"},
                                         Replacement{"highp float", "mediump", "lowp", "highp float"},
                                         Replacement{"medium", "mediump", "lowp", "medium"},
                                         Replacement{"", "mediump", "lowp", ""}, Replacement{"aaa", "aa", "b", "ba"},
                                         Replacement{"abc", "abc", "xyz",
                                                     "abc"}, // not longer than the replacement: left alone
                                         Replacement{"abcd", "abc", "xyz", "xyzd"}, // but one character more is enough
                                         Replacement{"lowp a; lowp", "lowp", "mediump", "mediump a; mediump"},
                                         Replacement{"aaaa", "aa", "bbb", "bbbbbb"},
                                         Replacement{"text", "", "x", "text"}, Replacement{"text", "", "", "text"}));

// Catches overlapping matches, indices of the wrong end, and an endless search for nothing.
TEST(FindNumber, ReportsFirstAndLastCharacters) {
    std::vector<int> positions;
    EXPECT_EQ(findNumberFirst("abcabc", "abc", positions), 2);
    EXPECT_EQ(findNumberFirst("aaa", "aa", positions), 1) << "this call's count, not the list's size";
    EXPECT_THAT(positions, ElementsAre(0, 3, 0));
    EXPECT_EQ(findNumberLast("abcabc", "abc", positions), 5) << "the list's size, not this call's count";
    EXPECT_THAT(positions, ElementsAre(0, 3, 0, 2, 5));
    for (const auto find : {findNumberFirst, findNumberLast}) {
        std::vector<int> none;
        EXPECT_EQ(find("text", "", none), 0);
        EXPECT_EQ(find(nullptr, "a", none), 0);
        EXPECT_EQ(find("a", nullptr, none), 0);
        EXPECT_EQ(find("a", "ab", none), 0);
    }
}

// Catches replacement at any value but 1, a second string that is edited, and a missing log line.
TEST(UpdateShaderCode, WorksAtExactlyOne) {
    LogCapture log;
    for (const int value : {-1, 0, 2, 1}) {
        char first[] = "mediump float;";
        char second[] = "mediump float;";
        const char* strings[] = {first, second};
        mShaderReplaceValue = value;
        updateShaderCode(1, 2, strings);
        EXPECT_STREQ(first, value == 1 ? "lowp float;" : "mediump float;");
        EXPECT_STREQ(second, "mediump float;");
        EXPECT_EQ(log.has(ANDROID_LOG_DEBUG, "SHADER_REPLACE updateShaderCode: replaceShader success!"), value == 1);
    }
}

// Catches a store into a string literal, which ends the game, and one that reaches only half of the text.
TEST(UpdateShaderCode, LeavesTextAloneThatCannotBeWritten) {
    mShaderReplaceValue = 1;
    LogCapture log;
    const char* literal[] = {"precision mediump float; void main() {}"};
    updateShaderCode(1, 1, literal);
    updateShaderCode(1, 1, literal);
    EXPECT_STREQ(literal[0], "precision mediump float; void main() {}");
    EXPECT_TRUE(log.has(ANDROID_LOG_DEBUG, "SHADER_REPLACE updateShaderCode: replaceShader success!"));

    const auto said = log.texts(ANDROID_LOG_DEBUG);
    EXPECT_EQ(std::count_if(said.begin(), said.end(),
                            [](const std::string& line) { return line.find("cannot be written") != line.npos; }),
              1)
        << "once, not at every shader";

    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    auto* pages =
        static_cast<char*>(mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    char* text = pages + page - 24; // begins in the first page, ends in the second
    const std::string source = "mediump float a; mediump float b;";
    std::memcpy(text, source.c_str(), source.size() + 1);
    ASSERT_EQ(mprotect(pages + page, page, PROT_READ), 0);
    const char* strings[] = {text};
    updateShaderCode(1, 1, strings);
    EXPECT_EQ(text, source);
    munmap(pages, 2 * page);
}
