// The rig between a program and Mesa: linked against the rig's libEGL and libGLESv2, with the real library under them.
#include "GameProcess.h"
#include "loader/ThreadTable.h"
#include "report/ReportLayout.h"

#include <csignal>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <sys/wait.h>

namespace {

using android::rig::ReportLayout;

constexpr char kHookedPackage[] = "com.miHoYo.Yuanshen"; // served by the legacy layer
constexpr char kShaderReplacement[] = R"({"configs":{"shader_replace_config":"1"}})";

std::string textOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/** A file beside the report of a process. */
std::string besideReport(const std::string& name, const char* suffix = "", pid_t pid = getpid()) {
    return std::string(getenv("ORVEL_ROOT")) + "/orvel/" + name + "." + std::to_string(pid) + suffix;
}

ReportLayout reportOf(pid_t pid = getpid()) {
    ReportLayout report{};
    const std::string bytes = textOf(besideReport("report", "", pid));
    EXPECT_EQ(sizeof report, bytes.size());
    memcpy(&report, bytes.data(), std::min(bytes.size(), sizeof report));
    return report;
}

class RigTest : public testing::Test {
protected:
    void bePackage(const char* package) { setenv("ORVEL_PACKAGE", package, 1); }

    void enableLegacyLayer() {
        bePackage(kHookedPackage);
        mGame.offerService({.text = kShaderReplacement});
    }

    GameProcess mGame{"org.example.game"};
};

// Catches a loader that believes the system's libraries, which answer every gl... name with a stub.
TEST_F(RigTest, WhatTheDriverLacksIsNull) {
    EXPECT_EQ(nullptr, eglGetProcAddress("glShadingRateQCOM"));
    EXPECT_EQ(nullptr, eglGetProcAddress("glShadingRateEXT"));
    EXPECT_EQ(nullptr, eglGetProcAddress("glNoSuchThing"));
    EXPECT_EQ(nullptr, eglGetProcAddress("eglNoSuchThing"));
    EXPECT_EQ(nullptr, eglGetProcAddress(nullptr));
    for (const char* name : {"glViewport", "glEGLImageTargetTexture2DOES", "eglSwapBuffers", "eglCreateImageKHR"}) {
        EXPECT_NE(nullptr, eglGetProcAddress(name)) << name;
    }
    EXPECT_EQ(EGL_SUCCESS, eglGetError()) << "the start must not leave an error behind";
}

// Catches a loader that takes desktop GL away from programs that reach it through EGL.
TEST_F(RigTest, DesktopGlIsThereForThoseWhoAsk) {
    EXPECT_EQ(nullptr, eglGetProcAddress("glPolygonMode"));
    ASSERT_TRUE(eglBindAPI(EGL_OPENGL_API));
    EXPECT_NE(nullptr, eglGetProcAddress("glPolygonMode"));
}

// Catches public entries that jump to null: here nothing at all could be filled.
TEST_F(RigTest, NullEntriesDoNothing) {
    setenv("ORVEL_SYSTEM_EGL", "/nonexistent/libEGL.so.1", 1);
    EXPECT_EQ(EGL_NO_DISPLAY, eglGetDisplay(EGL_DEFAULT_DISPLAY));
    EXPECT_FALSE(eglSwapBuffers(EGL_NO_DISPLAY, EGL_NO_SURFACE));
    EXPECT_EQ(nullptr, eglGetProcAddress("glViewport"));
    EXPECT_EQ(nullptr, glGetString(GL_VERSION));
    glViewport(0, 0, 1, 1);
    EXPECT_EQ(0u, glCreateProgram());
    EXPECT_EQ(android::rig::NO_GLES_TABLE, reportOf().reason);
}

// Catches a table that outlives its context, one that a failed call takes away, and one that leaks to other threads.
TEST_F(RigTest, ThreadTableFollowsTheContext) {
    enableLegacyLayer();
    const android::gl_hooks_t* const driver = orvelThreadGl;
    const Context context;
    EXPECT_EQ(driver, orvelThreadGl);
    ASSERT_TRUE(context.makeCurrent());
    const android::gl_hooks_t* const hooked = orvelThreadGl;
    EXPECT_NE(driver->gl.glShaderSource, hooked->gl.glShaderSource);

    EXPECT_FALSE(eglMakeCurrent(context.display, context.surface, context.surface, EGLContext(0x1234)));
    EXPECT_EQ(hooked, orvelThreadGl);
    std::thread([&] {
        EXPECT_EQ(driver, orvelThreadGl);
        glClear(GL_COLOR_BUFFER_BIT); // without a context: nothing happens, nothing breaks
        EXPECT_EQ(nullptr, glGetString(GL_VERSION));
    }).join();

    EXPECT_TRUE(context.leave());
    EXPECT_EQ(driver, orvelThreadGl);
    ASSERT_TRUE(context.makeCurrent());
    EXPECT_EQ(hooked, orvelThreadGl);
    EXPECT_TRUE(eglReleaseThread());
    EXPECT_EQ(driver, orvelThreadGl);
}

// Catches one thread's calls ending up in another thread's context.
TEST_F(RigTest, TwoThreadsDrawIntoTheirOwnContexts) {
    enableLegacyLayer();
    eglGetDisplay(EGL_DEFAULT_DISPLAY);
    const auto draw = [](GLfloat red, GLubyte expected) {
        const Context context;
        ASSERT_TRUE(context.makeCurrent());
        for (int frame = 0; frame < 50; ++frame) {
            glClearColor(red, 0, 0, 1);
            glClear(GL_COLOR_BUFFER_BIT);
            GLubyte pixel[4] = {};
            glReadPixels(3, 3, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
            ASSERT_EQ(expected, pixel[0]);
            context.swap();
        }
        context.leave();
    };
    std::thread other(draw, 1.0f, 255);
    draw(0.0f, 0);
    other.join();
    EXPECT_EQ(100u, reportOf().counters[android::rig::PROGRAM_SWAPS]);
}

// Catches a report that misses hooks, takes the library's word for what it did, or mixes up the two ends.
TEST_F(RigTest, ReportTellsWhatWasChanged) {
    enableLegacyLayer();
    const Context context;
    ASSERT_TRUE(context.makeCurrent());
    const std::string before = "precision mediump float;\nvoid main() { gl_FragColor = vec4(1.0); }\n";
    std::string edited = before; // the library edits the program's own text
    const char* text = edited.c_str();
    const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
    glShaderSource(shader, 1, &text, nullptr);
    char atDriver[256] = "";
    glGetShaderSource(shader, sizeof atDriver, nullptr, atDriver);
    EXPECT_EQ("precision lowp float;\nvoid main() { gl_FragColor = vec4(1.0); }\n", std::string(atDriver));

    const char* plain = "void main() {}";
    const auto asked = reinterpret_cast<PFNGLSHADERSOURCEPROC>(eglGetProcAddress("glShaderSource"));
    asked(shader, 1, &plain, nullptr);
    for (int frame = 0; frame < 3; ++frame) {
        context.swap();
    }
    eglSwapBuffers(context.display, EGL_NO_SURFACE); // fails: no frame

    const ReportLayout report = reportOf();
    EXPECT_STREQ(kHookedPackage, report.package);
    EXPECT_TRUE(report.libraryLoaded && report.enabled);
    EXPECT_EQ(android::rig::LAYER_LEGACY, report.layer);
    EXPECT_EQ(24u, report.hookCount);
    EXPECT_STREQ("glActiveTexture", report.hooks[0]);
    EXPECT_STREQ("platform.eglSwapBuffers", report.hooks[23]);
    EXPECT_NE('\0', report.renderer[0]);
    const std::vector<uint64_t> expected = {3, 3, 1, 2, 1, before.size(), before.size() - 3, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(expected, std::vector<uint64_t>(std::begin(report.counters), std::end(report.counters)));
    EXPECT_EQ(before, textOf(besideReport("shader-before", ".glsl")));
    EXPECT_EQ(atDriver, textOf(besideReport("shader-after", ".glsl")));
}

// Catches a report that is written when the program ends: a killed one would leave nothing.
TEST_F(RigTest, KilledProgramLeavesItsReport) {
    bePackage("not.on.the.list");
    const pid_t child = fork();
    if (child == 0) {
        const Context context;
        context.makeCurrent();
        context.swap();
        raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    ASSERT_TRUE(WIFSIGNALED(status));
    const ReportLayout report = reportOf(child);
    EXPECT_EQ(1u, report.counters[android::rig::PROGRAM_SWAPS]);
    EXPECT_EQ(0u, report.hookCount);
}

// Catches a program that pays for a library that is not there.
TEST_F(RigTest, RunsWithoutLibrary) {
    setenv("ORVEL_LIBRARY", "/nonexistent/liborvel.so", 1);
    const Context context;
    EXPECT_TRUE(context.makeCurrent());
    EXPECT_NE(nullptr, glGetString(GL_VERSION));
    EXPECT_TRUE(context.swap());
    const ReportLayout report = reportOf();
    EXPECT_FALSE(report.libraryLoaded);
    EXPECT_NE(nullptr, strstr(report.libraryProblem, "/nonexistent/liborvel.so"));
}

struct NotEnabled {
    const char* name;
    const char* package;
    std::optional<Answer> answer; // none: there is no service
    android::rig::Reason reason;
};
void PrintTo(const NotEnabled& value, std::ostream* out) { *out << value.name; }

class RigReason : public RigTest, public testing::WithParamInterface<NotEnabled> {};

// Catches a report that blames the wrong one.
TEST_P(RigReason, SaysWhyNotEnabled) {
    bePackage(GetParam().package);
    if (GetParam().answer) {
        mGame.offerService(*GetParam().answer);
    }
    eglGetDisplay(EGL_DEFAULT_DISPLAY);
    const ReportLayout report = reportOf();
    EXPECT_TRUE(report.libraryLoaded);
    EXPECT_FALSE(report.enabled);
    EXPECT_EQ(GetParam().reason, report.reason);
    EXPECT_EQ(0u, report.hookCount);
    EXPECT_EQ(android::rig::LAYER_NONE, report.layer);
}

INSTANTIATE_TEST_SUITE_P(
    Reasons, RigReason,
    testing::Values(NotEnabled{"NotListed", "org.example.unlisted", Answer{"{}"}, android::rig::NOT_LISTED},
                    NotEnabled{"ServiceAbsent", kHookedPackage, std::nullopt, android::rig::SERVICE_ABSENT},
                    NotEnabled{"CallFailed", kHookedPackage, Answer{.status = android::FAILED_TRANSACTION},
                               android::rig::CALL_FAILED},
                    NotEnabled{"Exception", kHookedPackage, Answer{.exception = -3}, android::rig::SERVICE_EXCEPTION},
                    NotEnabled{"EmptyAnswer", kHookedPackage, Answer{}, android::rig::EMPTY_ANSWER}),
    [](const auto& reason) { return reason.param.name; });

} // namespace
