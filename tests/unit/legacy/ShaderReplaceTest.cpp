#include "legacy/ShaderReplace.h"

#include "LogCapture.h"
#include "settings/orvel_modify_params.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace android;

// Catches wrong indices at the ends and between neighbours, and a length rule that looks at the wrong text.
TEST(ReplaceShader, EditsInPlace) {
    struct Replacement {
        const char* text;
        const char* from;
        const char* to;
        const char* expected;
    };
    for (const auto& [text, from, to, expected] :
         {Replacement{"mediump", "mediump", "lowp", "lowp"},
          {"precision mediump float;\nmediump vec2 a;", "mediump", "lowp", "precision lowp float;\nlowp vec2 a;"},
          {"mediumpmediumpx", "mediump", "lowp", "lowplowpx"},
          {"my_mediumpValue", "mediump", "lowp", "my_lowpValue"},
          {"medium", "mediump", "lowp", "medium"},
          {"", "mediump", "lowp", ""},
          {"aaa", "aa", "b", "ba"},
          {"abc", "abc", "xyz", "abc"},   // not longer than the replacement: left alone
          {"abcd", "abc", "xyz", "xyzd"}, // but one character more is enough
          {"aaaa", "aa", "bbb", "bbbbbb"},
          {"text", "", "x", "text"}}) {
        char buffer[256] = {}; // with room behind the text
        std::memcpy(buffer, text, std::strlen(text) + 1);
        replaceShader(buffer, from, to);
        EXPECT_STREQ(buffer, expected);
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
