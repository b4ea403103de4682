#include "hook/OrvelHook.h"

#include "LogCapture.h"
#include "RecordingDriver.h"
#include "app/FrameworkProcess.h"
#include "app/OrvelRenderContext.h"
#include "next/OrvelNext.h"

#include <gmock/gmock.h>

#include <utility>

using namespace android;
using namespace android::orvel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr GLint kDriverExtensions = 3;

const GLubyte* bytes(const char* text) { return reinterpret_cast<const GLubyte*>(text); }
std::string text(const GLubyte* answer) { return answer ? reinterpret_cast<const char*>(answer) : "null"; }

/** The framework on a driver whose extensions the test chooses. Entries are called as the loader does. */
class Installed : public testing::Test {
protected:
    void install(const char* driverExtensions) {
        mData = &beFramework(APP_TYPE_BILI, kSharedShading);
        mDriver.answer<&platform_impl_t::glGetString>(
            [=](GLenum name) { return bytes(name == GL_EXTENSIONS ? driverExtensions : "other"); });
        mDriver.answer<&platform_impl_t::glGetStringi>(
            [](GLenum, GLuint index) { return bytes(index == 0 ? "GL_A" : "GL_B"); });
        mDriver.answer<&platform_impl_t::glGetIntegerv>([](GLenum, GLint* data) {
            if (data) {
                *data = kDriverExtensions;
            }
        });
        next::InitNextFunctions(mDriver.connection());
        hook::RegisterHookedFunctions(mDriver.connection());
    }
    platform_impl_t& platform() { return mDriver.connection()->platform; }
    GLint number(GLenum name) {
        GLint value = 0;
        platform().glGetIntegerv(name, &value);
        return value;
    }

    RecordingDriver mDriver;
    app::OrvelProcessorDataBase* mData = nullptr;
};

// Catches a process without modules that is hooked all the same, an entry too many or too few, and hooks that are saved
// as the driver's entries by a second installation.
TEST_F(Installed, ReplacesItsEntriesOnce) {
    const platform_impl_t platformBefore = platform();
    const egl_t eglBefore = mDriver.connection()->egl;
    hook::RegisterHookedFunctions(mDriver.connection());
    EXPECT_EQ(differences(platformBefore, platform()), 0u);
    install("");
    EXPECT_EQ(differences(platformBefore, platform()), 8u); // six, and the two swaps
    EXPECT_EQ(differences(eglBefore, mDriver.connection()->egl), 1u);
    hook::RegisterHookedFunctions(mDriver.connection());
    mDriver.forget();
    platform().eglMakeCurrent(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(text(platform().glGetString(GL_VENDOR)), "other");
    EXPECT_EQ(mDriver.calls().size(), 2u);
}

struct Answers {
    const char* driver;
    const char* told;
    bool added;
};

class DebugLabel : public Installed, public testing::WithParamInterface<Answers> {};

// Catches an application that is told of labels in one query and not in another, and a driver that is asked again.
TEST_P(DebugLabel, IsTheSameInEveryQuery) {
    install(GetParam().driver);
    const GLint more = GetParam().added ? 1 : 0;
    mDriver.forget();
    EXPECT_EQ(text(platform().glGetStringi(GL_EXTENSIONS, 0)), more ? "GL_EXT_debug_label" : "GL_A");
    EXPECT_THAT(mDriver.calls(), testing::Contains(call("platform.glGetString", GL_EXTENSIONS)));
    EXPECT_EQ(number(GL_NUM_EXTENSIONS), kDriverExtensions + more);
    EXPECT_EQ(number(GL_MAX_TEXTURE_SIZE), kDriverExtensions);
    platform().glGetIntegerv(GL_NUM_EXTENSIONS, nullptr);
    mDriver.forget();
    EXPECT_EQ(text(platform().glGetStringi(GL_EXTENSIONS, 2)), "GL_B");
    EXPECT_EQ(text(platform().glGetStringi(GL_VENDOR, 0)), "GL_A");
    EXPECT_THAT(mDriver.calls(), ElementsAre(call("platform.glGetStringi", GL_EXTENSIONS, 2 - more),
                                             call("platform.glGetStringi", GL_VENDOR, 0)));
    mDriver.forget();
    const GLubyte* first = platform().glGetString(GL_EXTENSIONS);
    EXPECT_EQ(text(first), GetParam().told);
    EXPECT_EQ(platform().glGetString(GL_EXTENSIONS), first);
    EXPECT_THAT(mDriver.calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Drivers, DebugLabel,
                         testing::Values(Answers{"GL_A GL_B", "GL_EXT_debug_label GL_A GL_B", true},
                                         Answers{nullptr, "GL_EXT_debug_label", true},
                                         Answers{"GL_A GL_EXT_debug_label", "GL_A GL_EXT_debug_label", false},
                                         Answers{"GL_EXT_debug_label_x", "GL_EXT_debug_label_x", false}));

// Catches a decision that waits for itself, is made twice, or ends the game for want of an entry.
TEST_F(Installed, StandsADriverThatCallsBackOrLacksEntries) {
    install("GL_A");
    const GLubyte* inside = nullptr;
    mDriver.answer<&platform_impl_t::glGetString>([&](GLenum name) {
        if (!std::exchange(inside, bytes("asked"))) { // as from a debug callback
            inside = platform().glGetString(name);
        }
        return bytes("GL_A");
    });
    EXPECT_EQ(text(platform().glGetString(GL_EXTENSIONS)), "GL_EXT_debug_label GL_A");
    EXPECT_EQ(inside, platform().glGetString(GL_EXTENSIONS));
    egl_connection_t bare{};
    gl_hooks_t table{};
    bare.hooks[egl_connection_t::GLESv2_INDEX] = &table;
    hook::RegisterHookedFunctions(&bare);
    EXPECT_EQ(text(bare.platform.glGetString(GL_VENDOR)), "null");
    EXPECT_EQ(text(bare.platform.glGetStringi(GL_VENDOR, 0)), "null");
    bare.platform.glGetIntegerv(GL_NUM_EXTENSIONS, nullptr);
    EXPECT_EQ(bare.egl.eglGetProcAddress("glA"), nullptr);
}

// Catches hooks that stand on the wrong side of the driver's call, and a failure of the driver that is lost or undone.
TEST_F(Installed, FollowsContexts) {
    install("");
    void* const context = this;
    std::vector<bool> current; // whether a render context was, when the driver was called
    mDriver.answer<&platform_impl_t::eglCreateContext>(
        [&](EGLDisplay, EGLConfig, EGLContext, const EGLint*) { return context; });
    mDriver.answer<&platform_impl_t::eglMakeCurrent>([&](EGLDisplay, EGLSurface, EGLSurface, EGLContext) {
        current.push_back(gContextTls != nullptr);
        return EGLBoolean(EGL_FALSE);
    });
    mDriver.answer<&platform_impl_t::eglDestroyContext>([&](EGLDisplay, EGLContext) {
        current.push_back(gContextTls != nullptr);
        return 3u;
    });
    EXPECT_EQ(platform().eglCreateContext(nullptr, nullptr, nullptr, nullptr), context);
    EXPECT_FALSE(platform().eglMakeCurrent(nullptr, nullptr, nullptr, context));
    ASSERT_NE(gContextTls, nullptr);
    EXPECT_EQ(gContextTls->mContext, context);
    EXPECT_EQ(platform().eglDestroyContext(nullptr, context), 3u);
    EXPECT_THAT(current, ElementsAre(true, false));
    mDriver.answer<&platform_impl_t::eglCreateContext>(
        [](EGLDisplay, EGLConfig, EGLContext, const EGLint*) { return EGL_NO_CONTEXT; });
    EXPECT_EQ(platform().eglCreateContext(nullptr, nullptr, nullptr, nullptr), EGL_NO_CONTEXT);
}

// Catches a module that competes with the application for an extension, and an application that gets a hook.
TEST_F(Installed, GivesUpModulesWhoseFunctionTheApplicationUses) {
    install("");
    mData->ColloctModuleExtensionFunctions();
    const auto address = reinterpret_cast<__eglMustCastToProperFunctionPointerType>(&bytes);
    mDriver.answer<&egl_t::eglGetProcAddress>([=](const char* name) { return name ? address : nullptr; });
    const auto ask = mDriver.connection()->egl.eglGetProcAddress;
    EXPECT_EQ(ask("glDrawArrays"), address);
    {
        const LogCapture log;
        EXPECT_EQ(ask(nullptr), nullptr);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
    EXPECT_TRUE(mData->HasAnyModuleId());
    EXPECT_EQ(ask("glShadingRateEXT"), address);
    EXPECT_FALSE(mData->HasAnyModuleId());
}

} // namespace
