// Windows without a display: buffers that change their size behind a handle that stays.
#include "GameProcess.h"
#include "report/ReportLayout.h"

#include <android/native_window.h>
#include <system/window.h>

#include <cstring>
#include <vector>

namespace {

using Size = std::pair<EGLint, EGLint>;

EGLNativeWindowType createWindow(EGLint width, EGLint height) {
    using Create = EGLNativeWindowType(EGLAPIENTRYP)(EGLint, EGLint);
    return reinterpret_cast<Create>(eglGetProcAddress("orvelCreateWindow"))(width, height);
}

/** A context on a window, as a program makes one that knows nothing of pbuffers. */
struct Screen {
    Screen(EGLint width, EGLint height) : window(createWindow(width, height)) {
        display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
        EXPECT_TRUE(eglInitialize(display, nullptr, nullptr));
        const EGLint wanted[] = {EGL_SURFACE_TYPE,
                                 EGL_WINDOW_BIT,
                                 EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_ES2_BIT,
                                 EGL_RED_SIZE,
                                 8,
                                 EGL_ALPHA_SIZE,
                                 8,
                                 EGL_NONE};
        EGLint count = 0;
        EXPECT_TRUE(eglChooseConfig(display, wanted, &config, 1, &count));
        EXPECT_EQ(1, count);
        surface = eglCreateWindowSurface(display, config, window, nullptr);
        EXPECT_NE(EGL_NO_SURFACE, surface);
        const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, version);
    }
    EGLBoolean makeCurrent() const { return eglMakeCurrent(display, surface, surface, context); }
    EGLBoolean leave() const { return eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT); }
    ANativeWindow* native() const { return reinterpret_cast<ANativeWindow*>(window); }

    Size surfaceSize() const {
        Size size{-1, -1};
        EXPECT_TRUE(eglQuerySurface(display, surface, EGL_WIDTH, &size.first));
        EXPECT_TRUE(eglQuerySurface(display, surface, EGL_HEIGHT, &size.second));
        return size;
    }
    Size bufferSize() const {
        Size size{-1, -1};
        EXPECT_EQ(0, native()->query(native(), 22, &size.first));
        EXPECT_EQ(0, native()->query(native(), 23, &size.second));
        return size;
    }

    EGLNativeWindowType window;
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLConfig config = nullptr;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
};

/** Clears all of the current surface, and tells which part of a larger area came out green. */
Size clearedArea(const Size& limit) {
    glDisable(GL_SCISSOR_TEST);
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    std::vector<GLubyte> pixels(static_cast<size_t>(limit.first * limit.second * 4)); // not written outside
    glReadPixels(0, 0, limit.first, limit.second, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    const auto isGreen = [&](EGLint x, EGLint y) { return pixels[(y * limit.first + x) * 4 + 1] == 255; };
    Size area{0, 0};
    while (area.first < limit.first && isGreen(area.first, 0)) {
        ++area.first;
    }
    while (area.second < limit.second && isGreen(0, area.second)) {
        ++area.second;
    }
    EXPECT_TRUE(area.first == 0 || isGreen(area.first - 1, area.second - 1));
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
    return area;
}

class WindowTest : public testing::Test {
protected:
    android::rig::ReportLayout report() const {
        android::rig::ReportLayout layout{};
        std::ifstream file(std::string(getenv("ORVEL_ROOT")) + "/orvel/report." + std::to_string(getpid()),
                           std::ios::binary);
        EXPECT_TRUE(file.read(reinterpret_cast<char*>(&layout), sizeof layout));
        return layout;
    }

    GameProcess mGame{"org.example.game"};
};

constexpr Size kLimit{200, 200};

// Catches buffers that change in name alone, a handle that changes with them, and state of the game that gets lost.
TEST_F(WindowTest, BuffersChangeBehindTheHandle) {
    const Screen screen(64, 48);
    ASSERT_TRUE(screen.makeCurrent());
    EXPECT_EQ(Size(64, 48), clearedArea(kLimit));
    glViewport(1, 2, 3, 4);

    EXPECT_EQ(0, ANativeWindow_setBuffersGeometry(screen.native(), 160, 90, ANativeWindow_getFormat(screen.native())));
    EXPECT_EQ(Size(160, 90), clearedArea(kLimit));
    EXPECT_EQ(Size(160, 90), screen.surfaceSize());
    EXPECT_EQ(Size(160, 90), screen.bufferSize());
    EXPECT_EQ(160, ANativeWindow_getWidth(screen.native()));
    EXPECT_EQ(90, ANativeWindow_getHeight(screen.native()));
    EXPECT_EQ(screen.surface, eglGetCurrentSurface(EGL_DRAW));
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(3, viewport[2]);
    EXPECT_TRUE(eglSwapBuffers(screen.display, screen.surface));

    EXPECT_EQ(0, ANativeWindow_setBuffersGeometry(screen.native(), 0, 0, 0)); // the window's own size
    EXPECT_EQ(Size(64, 48), clearedArea(kLimit));
    EXPECT_EQ(2u, report().counters[android::rig::WINDOW_CHANGES]);
    EXPECT_EQ(64u, report().windowWidth);
}

// Catches buffers taken away from under a thread that draws, and a wish that is forgotten meanwhile.
TEST_F(WindowTest, WishOfAnotherThreadWaitsForTheFrame) {
    const Screen screen(64, 48);
    ASSERT_TRUE(screen.makeCurrent());
    const auto wish = [&](EGLint width, EGLint height) {
        std::thread([&] { EXPECT_EQ(0, ANativeWindow_setBuffersGeometry(screen.native(), width, height, 0)); }).join();
    };
    wish(100, 80);
    EXPECT_EQ(Size(64, 48), clearedArea(kLimit));
    EXPECT_TRUE(eglSwapBuffers(screen.display, screen.surface));
    EXPECT_EQ(Size(100, 80), clearedArea(kLimit));

    EXPECT_TRUE(screen.leave());
    wish(50, 40);
    EXPECT_TRUE(screen.makeCurrent());
    EXPECT_EQ(Size(50, 40), clearedArea(kLimit));
}

// Catches a map of handles that mixes windows up, or keeps rows of surfaces that are gone.
TEST_F(WindowTest, TwoWindowsAndTheEndOfASurface) {
    const Screen first(64, 48);
    const Screen second(32, 16);
    EXPECT_EQ(EGL_NO_SURFACE, eglCreateWindowSurface(first.display, first.config, first.window, nullptr))
        << "a window has one surface at a time";
    ASSERT_TRUE(eglMakeCurrent(first.display, first.surface, second.surface, first.context));
    EXPECT_EQ(second.surface, eglGetCurrentSurface(EGL_READ));
    EXPECT_EQ(0, ANativeWindow_setBuffersGeometry(second.native(), 20, 10, 0)); // current for reading alone
    EXPECT_EQ(Size(64, 48), first.surfaceSize());
    EXPECT_EQ(Size(20, 10), second.surfaceSize());
    EXPECT_EQ(second.surface, eglGetCurrentSurface(EGL_READ));
    ASSERT_TRUE(first.leave());

    EXPECT_TRUE(eglDestroySurface(second.display, second.surface));
    EXPECT_FALSE(eglDestroySurface(second.display, second.surface));
    EXPECT_EQ(EGL_BAD_SURFACE, eglGetError());
    EXPECT_EQ(0, ANativeWindow_setBuffersGeometry(second.native(), 30, 15, 0)) << "a window outlives its surface";
    const EGLSurface again = eglCreateWindowSurface(second.display, second.config, second.window, nullptr);
    ASSERT_TRUE(eglMakeCurrent(second.display, again, again, second.context));
    EXPECT_EQ(Size(30, 15), clearedArea(kLimit));
    ASSERT_TRUE(second.leave());

    EXPECT_TRUE(eglTerminate(first.display));
    EXPECT_EQ(Size(64, 48), first.bufferSize());
    EXPECT_EQ(0, ANativeWindow_setBuffersGeometry(first.native(), 8, 8, 0));
    EXPECT_EQ(Size(8, 8), first.bufferSize());
}

// Catches input that breaks a window, or that leaves it half changed.
TEST_F(WindowTest, BadInputChangesNothing) {
    EXPECT_EQ(EGLNativeWindowType(), createWindow(0, 10));
    EXPECT_EQ(EGLNativeWindowType(), createWindow(10, -1));
    const Screen screen(64, 48);
    ASSERT_TRUE(screen.makeCurrent());
    ANativeWindow* window = screen.native();
    for (const auto& [width, height, format] :
         {std::tuple{-1, 10, 0}, {10, 0, 0}, {10, 10, -1}, {10, 10, 4}, {16385, 10, 0}}) {
        EXPECT_GT(0, ANativeWindow_setBuffersGeometry(window, width, height, format)) << width << 'x' << height;
    }
    EXPECT_GT(0, ANativeWindow_setBuffersGeometry(nullptr, 10, 10, 0));
    EXPECT_EQ(Size(64, 48), screen.bufferSize());
    EXPECT_EQ(Size(64, 48), clearedArea(kLimit));
    int value = 7;
    EXPECT_NE(0, window->query(window, 99, &value));
    EXPECT_EQ(7, value);
    EXPECT_EQ(EGL_NO_SURFACE, eglCreateWindowSurface(screen.display, screen.config, EGLNativeWindowType(), nullptr));
}

// Catches a loader that gives the library what it would mistake for a window: here the program's window is a number.
TEST_F(WindowTest, LibraryGetsAWindowWhateverTheProgramHas) {
    setenv("ORVEL_PACKAGE", "com.miHoYo.Yuanshen", 1);
    mGame.offerService({.text = R"({"configs":{"shader_replace_config":"1"}})"});
    const Screen screen(64, 48);
    EXPECT_EQ(EGL_NO_SURFACE, eglCreateWindowSurface(screen.display, screen.config, EGLNativeWindowType(77), nullptr));
    EXPECT_NE(EGL_SUCCESS, eglGetError());
    ASSERT_TRUE(screen.makeCurrent());
    EXPECT_EQ(Size(64, 48), clearedArea(kLimit));
}

} // namespace
