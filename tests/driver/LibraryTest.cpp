// The real liborvel.so on Mesa: what the driver holds afterwards, what the game sees.
#include "GameProcess.h"

#include <gmock/gmock.h>

#include <array>
#include <ostream>
#include <vector>

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr char kReplaceShaders[] = R"({"configs":{"shader_replace_config":"1"}})";

constexpr char kEverything[] = R"({"configs":{"shader_replace_config":"1","tex_size":"1920x1080","shader_rate":"1",
    "tex_param_anisotropy":"4","ys_scene_recognize":"1","ys_transfer_recognize":"1","ys_launch_recognize":"1",
    "hkrpg_scene_recognize":"1","hp_transfer_recognize":"1","max_resolution":"1920x864",
    "drr_enable":"1","drr_base_size":"1920x1080","drr_available_size":"960x540","drr_illegal_size":"1x1",
    "dfi_interval":"100","orvel_sr_config":"1620x728;2712x1220",
    "orvel_sr_backbuffer_size_config":"1,2,3,4,5,6,7,8"}})";

const char kVertexShader[] = "#version 300 es\n"
                             "void main() {\n"
                             "    vec2 corner = vec2(gl_VertexID == 1 ? 3 : -1, gl_VertexID == 2 ? 3 : -1);\n"
                             "    gl_Position = vec4(corner, 0, 1);\n"
                             "}\n";
const char kFragmentShader[] = "#version 300 es\n"
                               "precision mediump float;\n"
                               "out mediump vec4 colour;\n"
                               "void main() { colour = vec4(0.25, 0.5, 0.75, 1.0); }\n";

/** Compiles text that the game owns, as it would be read from a file. */
GLuint compile(GLenum type, std::string text) {
    const GLuint shader = glCreateShader(type);
    const GLchar* strings[] = {text.data()};
    glShaderSource(shader, 1, strings, nullptr);
    glCompileShader(shader);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    EXPECT_TRUE(compiled);
    return shader;
}

std::string sourceOf(GLuint shader) {
    std::string text(4096, '\0');
    GLsizei length = 0;
    glGetShaderSource(shader, static_cast<GLsizei>(text.size()), &length, text.data());
    text.resize(static_cast<size_t>(length));
    return text;
}

/** Draws one triangle over everything and answers the middle pixel. */
std::array<GLubyte, 4> drawOnce() {
    const GLuint program = glCreateProgram();
    glAttachShader(program, compile(GL_VERTEX_SHADER, kVertexShader));
    glAttachShader(program, compile(GL_FRAGMENT_SHADER, kFragmentShader));
    glLinkProgram(program);
    glUseProgram(program);
    glViewport(0, 0, 64, 64);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    std::array<GLubyte, 4> pixel{};
    glReadPixels(32, 32, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    return pixel;
}

constexpr std::array<GLubyte, 4> kDrawn = {64, 128, 191, 255};

} // namespace

// Catches an edit that does not reach the driver, or a text that it does not compile.
TEST(LegacyGame, DriverHoldsTheRewrittenShader) {
    GameProcess game("com.miHoYo.Yuanshen", kReplaceShaders);
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    const std::string source = sourceOf(compile(GL_FRAGMENT_SHADER, kFragmentShader));
    EXPECT_THAT(source, HasSubstr("precision lowp float;\nout lowp vec4"));
    EXPECT_THAT(source, Not(HasSubstr("mediump")));
    EXPECT_THAT(game.log(), HasSubstr("SHADER_REPLACE updateShaderCode: replaceShader success!"));
    EXPECT_EQ(drawOnce(), kDrawn);
    EXPECT_TRUE(context.swap());
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Catches a crash of programs that keep their shaders in constants, as small ones do.
TEST(LegacyGame, ShaderInAStringLiteralStaysAsItIs) {
    GameProcess game("com.miHoYo.Yuanshen", kReplaceShaders);
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
    const GLchar* strings[] = {kFragmentShader};
    glShaderSource(shader, 1, strings, nullptr);
    EXPECT_EQ(sourceOf(shader), kFragmentShader);
}

struct Disabled {
    const char* name;
    const char* package;
    const char* configuration;
    const char* log; // a line that must be there
};
void PrintTo(const Disabled& row, std::ostream* out) { *out << row.name; }

class UnservedGame : public testing::TestWithParam<Disabled> {};

// Catches a process that is changed although nobody asked for it.
TEST_P(UnservedGame, IsLeftAlone) {
    GameProcess game(GetParam().package, GetParam().configuration);
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_EQ(sourceOf(compile(GL_FRAGMENT_SHADER, kFragmentShader)), kFragmentShader);
    EXPECT_EQ(drawOnce(), kDrawn);
    EXPECT_THAT(game.log(), HasSubstr(GetParam().log));
}

INSTANTIATE_TEST_SUITE_P(
    Reasons, UnservedGame,
    testing::Values(Disabled{"NoService", "com.miHoYo.Yuanshen", nullptr, "remote service not exist."},
                    Disabled{"EmptyAnswer", "com.miHoYo.Yuanshen", "", "pid: "},
                    Disabled{"Unlisted", "org.example.game", kReplaceShaders, "EnableDR: 0"},
                    Disabled{"NoJson", "com.miHoYo.Yuanshen", "shader_replace_config=1", " E libOrvel"},
                    Disabled{"OtherValue", "com.miHoYo.hkrpg", R"({"configs":{"shader_replace_config":"2"}})",
                             "pid: "}),
    [](const auto& reason) { return std::string(reason.param.name); });

// Catches a start that goes on without the answer it waits for.
TEST(SlowService, IsWaitedFor) {
    GameProcess game("com.miHoYo.Yuanshen");
    game.offerService({.text = kReplaceShaders, .delay = std::chrono::milliseconds(300)});
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_THAT(sourceOf(compile(GL_FRAGMENT_SHADER, kFragmentShader)), HasSubstr("lowp"));
}

// Catches an answer at binder's limit that is lost, and one above it that is taken for an empty one.
TEST(LargeAnswer, WorksUpToTheLimitOfATransaction) {
    // Exception code and length, two bytes a character, the terminator.
    constexpr size_t kRoom = (android::desktop::kMaxTransactionBytes - 8) / 2 - 1;
    std::string configuration = kReplaceShaders;
    configuration.resize(kRoom, ' ');
    GameProcess game("com.miHoYo.Yuanshen", configuration.c_str());
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_THAT(sourceOf(compile(GL_FRAGMENT_SHADER, kFragmentShader)), HasSubstr("lowp"));
}

TEST(LargeAnswer, FailsAboveTheLimit) {
    const std::string configuration(android::desktop::kMaxTransactionBytes / 2, ' ');
    GameProcess game("com.miHoYo.Yuanshen", configuration.c_str());
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_THAT(game.log(), HasSubstr("orvel:call remote service failed."));
    EXPECT_EQ(sourceOf(compile(GL_FRAGMENT_SHADER, kFragmentShader)), kFragmentShader);
}

class OldContext : public testing::TestWithParam<const char*> {};

// Catches a hook that asks an older context what it does not know, and so leaves an error that the game finds. Known to
// do so, and left out: boss recognition asks for texture sizes, frame repetition binds one framebuffer for each
// purpose.
TEST_P(OldContext, GetsNoErrorsOfOurs) {
    setenv("MESA_GLES_VERSION_OVERRIDE", GetParam(), 1);
    std::string configuration = kEverything;
    for (const char* key : {"ys_scene_recognize", "dfi_interval"}) {
        configuration.replace(configuration.find(key), 1, "-");
    }
    GameProcess game("com.miHoYo.Yuanshen", configuration.c_str());
    const Context context(2);
    ASSERT_TRUE(context.makeCurrent());
    const std::string version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    EXPECT_THAT(version, HasSubstr(std::string("OpenGL ES ") + GetParam()));
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glActiveTexture(GL_TEXTURE1);
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteTextures(1, &texture);
    context.swap();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

INSTANTIATE_TEST_SUITE_P(Versions, OldContext, testing::Values("2.0", "3.0"),
                         [](const auto& version) { return std::string("Es") + version.param[0]; });

// Catches an error of the game's own that the hooks swallow.
TEST(LegacyGame, KeepsItsOwnErrors) {
    GameProcess game("com.miHoYo.Yuanshen", kEverything);
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    glBindFramebuffer(GL_TEXTURE_2D, 0); // no target of framebuffers
    glViewport(0, 0, 32, 32);
    glUseProgram(0);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM));
}
