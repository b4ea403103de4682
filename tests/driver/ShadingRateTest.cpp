// Shading rates through the rig's stand-in: what the driver offers, what the library sets, what is told of each draw.
#include "GameProcess.h"

#include <GLES2/gl2ext.h>
#include <gmock/gmock.h>
#include <json/reader.h>
#include <png.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr char kVideo[] = "tv.danmaku.bili";
constexpr char kSmallWindowShading[] = R"({"configs":{"xrender_BaseInfo":"262144"}})";

class ShadingRate : public testing::Test {
protected:
    /** What the launcher's options become; before the first EGL call. */
    void offer(const char* which, const char* hidden = "") {
        setenv("ORVEL_SHADING_RATE", which, 1);
        setenv("ORVEL_HIDE_EXTENSIONS", hidden, 1);
        setenv("ORVEL_SHADING_RATE_TRACE", mTrace.c_str(), 1);
    }

    std::vector<Json::Value> trace() const {
        std::ifstream file(mTrace);
        std::vector<Json::Value> lines;
        for (std::string line; std::getline(file, line);) {
            lines.emplace_back();
            std::istringstream(line) >> lines.back();
        }
        return lines;
    }
    std::vector<std::string> rates() const {
        std::vector<std::string> found;
        for (const Json::Value& line : trace()) {
            found.push_back(line["rate"].asString());
        }
        return found;
    }

    const TestRoot mFolder;
    const std::string mTrace = std::string(getenv("ORVEL_ROOT")) + "/trace.jsonl";
    GameProcess mGame{kVideo};
};

/** Makes a program current that fills the left half of the viewport, at depth 0. */
void useLeftHalf() {
    const char* const sources[] = {"#version 300 es\n"
                                   "void main() {\n"
                                   "    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1);\n"
                                   "    gl_Position = vec4(corner.x - 1.0, corner.y * 2.0 - 1.0, 0, 1);\n"
                                   "}\n",
                                   "#version 300 es\n"
                                   "out mediump vec4 colour;\n"
                                   "void main() { colour = vec4(0.2, 0.4, 0.6, 1.0); }\n"};
    const GLuint program = glCreateProgram();
    for (const GLenum type : {GL_VERTEX_SHADER, GL_FRAGMENT_SHADER}) {
        const GLuint shader = glCreateShader(type);
        glShaderSource(shader, 1, &sources[type == GL_FRAGMENT_SHADER], nullptr);
        glCompileShader(shader);
        glAttachShader(program, shader);
    }
    glLinkProgram(program);
    glUseProgram(program);
}

std::string extensions() { return reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS)); }

/** The list as it is read one by one. */
std::string extensionsByNumber() {
    GLint count = 0;
    glGetIntegerv(GL_NUM_EXTENSIONS, &count);
    std::string list;
    for (GLint i = 0; i < count; ++i) {
        const GLubyte* name = glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i));
        list += (i ? " " : "") + std::string(name ? reinterpret_cast<const char*>(name) : "null");
    }
    return list;
}

// Catches an extension that is listed without its functions or the other way round, in one kind of list only, and one
// that stays although it is hidden.
TEST_F(ShadingRate, IsOfferedAsAsked) {
    offer("both", "GL_KHR_debug GL_EXT_discard_framebuffer GL_EXT_fragment_shading_rate");
    const Context context;
    context.makeCurrent();
    EXPECT_THAT(extensions(), HasSubstr("GL_QCOM_shading_rate"));
    EXPECT_THAT(extensions(), Not(HasSubstr("GL_EXT_fragment_shading_rate")));
    EXPECT_THAT(extensions(), Not(HasSubstr("GL_KHR_debug")));
    EXPECT_EQ(extensionsByNumber(), extensions());
    EXPECT_EQ(glGetStringi(GL_EXTENSIONS, 9999), nullptr);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_VALUE));
    EXPECT_NE(eglGetProcAddress("glShadingRateQCOM"), nullptr);
    EXPECT_EQ(eglGetProcAddress("glShadingRateEXT"), nullptr);
    EXPECT_EQ(eglGetProcAddress("glDiscardFramebufferEXT"), nullptr);
    EXPECT_NE(eglGetProcAddress("glTexStorage2D"), nullptr);
}

// Catches a rate that leaks into another context, combiners out of order, an image that outlives its framebuffer.
TEST_F(ShadingRate, IsKeptPerContextAndFramebuffer) {
    offer("ext");
    const Context first;
    const Context second;
    first.makeCurrent();
    const auto rate = reinterpret_cast<PFNGLSHADINGRATEEXTPROC>(eglGetProcAddress("glShadingRateEXT"));
    const auto combine =
        reinterpret_cast<PFNGLSHADINGRATECOMBINEROPSEXTPROC>(eglGetProcAddress("glShadingRateCombinerOpsEXT"));
    const auto attach =
        reinterpret_cast<PFNGLFRAMEBUFFERSHADINGRATEEXTPROC>(eglGetProcAddress("glFramebufferShadingRateEXT"));
    ASSERT_TRUE(rate && combine && attach);
    const auto draw = [] { glDrawArrays(GL_TRIANGLE_STRIP, 0, 4); };
    useLeftHalf();
    GLuint names[2] = {};
    glGenTextures(2, names);
    glBindTexture(GL_TEXTURE_2D, names[0]);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 64, 64);
    glBindTexture(GL_TEXTURE_2D, names[1]);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_R8UI, 8, 4);
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, names[0], 0);
    attach(GL_FRAMEBUFFER, GL_SHADING_RATE_ATTACHMENT_EXT, names[1], 0, 1, 2, 2);
    rate(GL_SHADING_RATE_4X2_PIXELS_EXT);
    rate(GL_SHADING_RATE_4X4_PIXELS_EXT + 1); // refused
    GLint asked = 0;
    glGetIntegerv(GL_SHADING_RATE_EXT, &asked);
    EXPECT_EQ(asked, GL_SHADING_RATE_4X2_PIXELS_EXT);
    combine(GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT, GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MAX_EXT);
    draw();
    combine(GL_FRAGMENT_SHADING_RATE_COMBINER_OP_REPLACE_EXT, GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT);
    draw();
    second.makeCurrent();
    useLeftHalf();
    draw();
    first.makeCurrent();
    combine(GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT, GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT);
    glDeleteFramebuffers(1, &framebuffer);
    draw();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));

    EXPECT_THAT(rates(), ElementsAre("4x2", "1x1", "1x1", "4x2"));
    const std::vector<Json::Value> lines = trace();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0]["framebuffer"].asUInt(), framebuffer);
    EXPECT_EQ(lines[0]["image"]["width"].asInt(), 8);
    EXPECT_EQ(lines[0]["image"]["height"].asInt(), 4);
    EXPECT_EQ(lines[0]["image"]["combiner"].asString(), "max");
    EXPECT_EQ(lines[1]["draw"].asInt(), 1);
    EXPECT_EQ(lines[1]["entry"].asString(), "glDrawArrays");
    EXPECT_NE(lines[2]["context"], lines[0]["context"]);
    EXPECT_TRUE(lines[3]["image"].isNull());
}

/** @return the colours of a picture, the lowest row first */
std::vector<std::array<png_byte, 3>> picture(const std::string& path, png_uint_32 width, png_uint_32 height) {
    png_image file{};
    file.version = PNG_IMAGE_VERSION;
    EXPECT_TRUE(png_image_begin_read_from_file(&file, path.c_str())) << path << ": " << file.message;
    file.format = PNG_FORMAT_RGB;
    EXPECT_EQ(file.width, width);
    EXPECT_EQ(file.height, height);
    std::vector<std::array<png_byte, 3>> pixels(size_t{file.width} * file.height);
    EXPECT_TRUE(
        png_image_finish_read(&file, nullptr, pixels.data(), -static_cast<png_int_32>(file.width * 3), nullptr));
    return pixels;
}

// Catches a picture of the wrong pixels, upside down, that ignores the game's depth test, and a view that
// changes the game's picture or state.
TEST_F(ShadingRate, IsShownWhereItWasDrawn) {
    offer("ext");
    const std::string folder = mTrace + ".view";
    std::filesystem::create_directory(folder);
    setenv("ORVEL_SHADING_RATE_VIEW", folder.c_str(), 1);
    setenv("ORVEL_SHADING_RATE_FRAMES", "7,0-1", 1);
    const Context context;
    context.makeCurrent();
    const auto rate = reinterpret_cast<PFNGLSHADINGRATEEXTPROC>(eglGetProcAddress("glShadingRateEXT"));
    ASSERT_TRUE(rate);
    useLeftHalf();
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glStencilFunc(GL_LESS, 3, 0x55);
    glClearDepthf(0.75f);
    glViewport(0, 0, 64, 64);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    rate(GL_SHADING_RATE_2X2_PIXELS_EXT);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4); // the left half
    glViewport(0, 32, 64, 32);
    rate(GL_SHADING_RATE_4X4_PIXELS_EXT);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4); // hidden: no nearer than what is there
    glViewport(32, 32, 64, 32);
    rate(GL_SHADING_RATE_1X1_PIXELS_EXT);
    glDrawElements(GL_TRIANGLE_STRIP, 4, GL_UNSIGNED_BYTE, "\0\1\2\3"); // the right half's top, beyond the window
    GLubyte shown[4] = {};
    glReadPixels(10, 10, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, shown);
    EXPECT_THAT(shown, ElementsAre(51, 102, 153, 255));
    context.swap();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_FALSE(glIsEnabled(GL_STENCIL_TEST));
    GLint mask = 0;
    glGetIntegerv(GL_STENCIL_VALUE_MASK, &mask);
    EXPECT_EQ(mask, 0x55);

    std::vector<std::filesystem::path> files; // a picture and its counts: the second frame drew nothing
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        files.push_back(file.path());
    }
    ASSERT_EQ(files.size(), 2u);
    const auto& pngFile = files[files[0].extension() == ".png" ? 0 : 1];
    ASSERT_THAT(pngFile.filename(), testing::StartsWith("frame-0-context-"));
    const auto pixels = picture(pngFile, 96, 64);
    const auto at = [&](size_t x, size_t y) { return pixels[y * 96 + x]; };
    const auto nothing = at(40, 10);
    EXPECT_EQ(at(31, 0), at(0, 63));
    EXPECT_NE(at(0, 0), nothing);
    EXPECT_EQ(at(32, 31), nothing);
    EXPECT_NE(at(32, 32), nothing);
    EXPECT_NE(at(32, 32), at(0, 0));
    EXPECT_EQ(at(70, 40), nothing);
    Json::Value counts;
    std::ifstream(std::filesystem::path(pngFile).replace_extension(".json")) >> counts;
    EXPECT_EQ(counts["undrawn"].asInt64(), std::count(pixels.begin(), pixels.end(), nothing));
    const auto finest = std::count(pixels.begin(), pixels.end(), at(0, 0));
    const auto coarse = std::count(pixels.begin(), pixels.end(), at(32, 32));
    int64_t told = 0;
    for (const Json::Value& count : counts["pixels"]) {
        told += count.asInt64();
    }
    EXPECT_EQ(told, finest + coarse);
    EXPECT_GT(counts["saved"].asDouble(), 0);
}

// Catches a rate image that is not looked at, or upside down.
TEST_F(ShadingRate, ShowsTheImagesRates) {
    offer("ext");
    setenv("ORVEL_SHADING_RATE_VIEW", getenv("ORVEL_ROOT"), 1);
    setenv("ORVEL_SHADING_RATE_FRAMES", "0", 1);
    const Context context;
    context.makeCurrent();
    const auto combine =
        reinterpret_cast<PFNGLSHADINGRATECOMBINEROPSEXTPROC>(eglGetProcAddress("glShadingRateCombinerOpsEXT"));
    const auto attach =
        reinterpret_cast<PFNGLFRAMEBUFFERSHADINGRATEEXTPROC>(eglGetProcAddress("glFramebufferShadingRateEXT"));
    ASSERT_TRUE(combine && attach);
    GLuint names[2] = {};
    glGenTextures(2, names);
    glBindTexture(GL_TEXTURE_2D, names[0]);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 64, 64);
    glBindTexture(GL_TEXTURE_2D, names[1]);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_R8UI, 4, 2);
    const GLubyte codes[] = {0, 0, 0, 0, 10, 10, 10, 10}; // 4x4 in the upper half
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 4, 2, GL_RED_INTEGER, GL_UNSIGNED_BYTE, codes);
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, names[0], 0);
    attach(GL_FRAMEBUFFER, GL_SHADING_RATE_ATTACHMENT_EXT, names[1], 0, 1, 2, 2);
    combine(GL_FRAGMENT_SHADING_RATE_COMBINER_OP_KEEP_EXT, GL_FRAGMENT_SHADING_RATE_COMBINER_OP_MAX_EXT);
    useLeftHalf();
    glViewport(0, 0, 64, 64);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    context.swap();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    const std::string suffix = "-framebuffer-" + std::to_string(framebuffer) + ".png";
    for (const auto& file : std::filesystem::directory_iterator(getenv("ORVEL_ROOT"))) {
        if (file.path().string().ends_with(suffix)) {
            const auto pixels = picture(file.path(), 64, 64);
            EXPECT_NE(pixels[31 * 64], pixels[32 * 64]);
            EXPECT_EQ(pixels[0], pixels[31 * 64]);
            EXPECT_THAT(pixels[32 * 64], ElementsAre(205, 45, 40)); // the legend's colour of 4x4
            return;
        }
    }
    ADD_FAILURE() << "no picture";
}

// Catches a small window that changes no rate, or not at the next swap, and one that leaves the rate behind.
TEST_F(ShadingRate, FollowsTheSmallWindow) {
    offer("both");
    mGame.root().write("/data/system/mcd/gameInfo", "");
    mGame.offerService({.text = kSmallWindowShading});
    const Context context;
    context.makeCurrent();
    useLeftHalf();
    const auto frame = [&] {
        glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
        context.swap();
    };
    // The file is watched by a thread of its own, so how soon the window is known to have changed is not fixed.
    const auto framesUntil = [&](const char* window, const std::string& rate) {
        mGame.root().write("/data/system/mcd/gameInfo", window);
        for (int i = 0; i < 500 && (rates().empty() || rates().back() != rate); ++i) {
            frame();
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        EXPECT_EQ(rates().back(), rate);
    };
    frame();
    frame();
    EXPECT_THAT(rates(), ElementsAre("1x1", "1x1"));
    framesUntil("4 tv.danmaku.bili 1\n", "2x2");
    framesUntil("4 tv.danmaku.bili 0\n", "1x1");
    EXPECT_THAT(mGame.log(), HasSubstr("framework: processor 9, modules 262144"));
}

// Catches modules that act on a driver without either extension.
TEST_F(ShadingRate, IsLeftAloneWithoutAnExtension) {
    offer("none");
    mGame.offerService({.text = kSmallWindowShading});
    const Context context;
    context.makeCurrent();
    EXPECT_THAT(mGame.log(), HasSubstr("framework: processor 9, modules none"));
}

// Catches a legacy game's configured rate that no draw gets.
TEST_F(ShadingRate, IsSetForLegacyGames) {
    setenv("ORVEL_PACKAGE", "com.miHoYo.Yuanshen", 1);
    offer("qcom");
    mGame.offerService({.text = R"({"configs":{"shader_rate":"3"}})"});
    const Context context;
    context.makeCurrent();
    useLeftHalf();
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    glDrawElements(GL_TRIANGLE_STRIP, 4, GL_UNSIGNED_BYTE, "\0\1\2\3");
    EXPECT_THAT(rates(), ElementsAre("2x2", "2x2"));
}

} // namespace
