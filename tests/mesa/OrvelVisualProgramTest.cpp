#include "next/OrvelVisualProgram.h"

#include "LogCapture.h"
#include "MesaContext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using android::orvel::next::OrvelVisualProgram;
using testing::ElementsAre;

namespace {

constexpr char kVertex[] = "#version 310 es\nvoid main() { gl_Position = vec4(0.0); }\n";
constexpr char kFragment[] = R"(#version 310 es
precision highp float;
uniform vec4 param;
uniform float steps[3];
layout(std140) uniform Block { vec4 inside; };
out vec4 colour;
void main() { colour = param * steps[1] + inside; }
)";
constexpr char kOther[] = "#version 310 es\nprecision highp float;\nuniform vec4 other;\nout vec4 c;\n"
                          "void main() { c = other; }\n";

} // namespace

// Catches uniforms that are lost or kept from an earlier program, and one in a block that gets a location.
TEST(OrvelVisualProgram, KnowsTheUniformsOfItsPresentProgram) {
    const MesaContext context;
    OrvelVisualProgram program;
    EXPECT_EQ(program.GetUniformLocation("param"), -1);
    program.CreateFromShaderSource(kVertex, kFragment);
    ASSERT_TRUE(program.IsValid());
    EXPECT_EQ(program.GetUniformLocation("param"), glGetUniformLocation(program.GetProgram(), "param"));
    EXPECT_EQ(program.GetUniformLocation("steps[0]"), glGetUniformLocation(program.GetProgram(), "steps[0]"));
    EXPECT_EQ(program.GetUniformLocation("inside"), -1);
    program.CreateFromShaderSource(kVertex, kOther);
    for (GLuint name = 1; name < 50; ++name) {
        EXPECT_FALSE(glIsShader(name)) << "left behind";
    }
    EXPECT_EQ(program.GetUniformLocation("param"), -1);
    EXPECT_NE(program.GetUniformLocation("other"), -1);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Catches a program that is used although it failed, and a failure that is not said.
TEST(OrvelVisualProgram, FailureLeavesItUnused) {
    const MesaContext context;
    LogCapture log;
    OrvelVisualProgram program;
    program.CreateFromShaderSource("nonsense", "nonsense");
    program.CreateFromShaderSource(kVertex, "nonsense");
    program.CreateFromShaderSource(kVertex, "#version 310 es\nprecision highp float;\nin vec4 nowhere;\nout vec4 c;\n"
                                            "void main() { c = nowhere; }\n");
    char noBinary[16] = {};
    EXPECT_FALSE(program.CreateFromBinarySource(noBinary, 0x1234, sizeof noBinary));
    EXPECT_THAT(log.texts(ANDROID_LOG_DEBUG), ElementsAre("vcf", "fcf", "pcf", "bpcf"));
    while (glGetError() != GL_NO_ERROR) { // the binary's unknown format is an error
    }
    program.Use();
    GLint current = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ(current, 0);
}
