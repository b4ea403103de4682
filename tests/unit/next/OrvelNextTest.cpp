#include "next/OrvelNext.h"

#include "RecordingDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace android;
using namespace android::orvel;
using testing::ElementsAre;

// Catches a copy that fills the connection instead of ours, or that leaves a hole a hook would fall into.
TEST(InitNextFunctions, FillsHolesInTheCopyOnly) {
    RecordingDriver driver;
    const next::GlTable whole = driver.gles2().gl;
    driver.gles2().gl = {};
    driver.gles2().gl.glUseProgram = whole.glUseProgram;
    driver.connection()->platform.eglSwapBuffers = nullptr;

    next::InitNextFunctions(driver.connection());

#define GL_ENTRY(Result, name, params, args, providers) EXPECT_NE(next::gl.name, nullptr) << #name;
#include <entries/gl_entries.in>
#undef GL_ENTRY
    EXPECT_EQ(next::gl.glLabelObjectEXT, &next::DummyLabelObjectEXT);
    next::gl.glLabelObjectEXT(GL_TEXTURE, 1, 0, "label");
    EXPECT_EQ(next::gl.glGetString(GL_VERSION), nullptr);
    EXPECT_EQ(next::gl.glCreateShader(GL_VERTEX_SHADER), 0u);
    EXPECT_EQ(next::platform.eglSwapBuffers, nullptr);
    EXPECT_EQ(driver.gles2().gl.glLabelObjectEXT, nullptr);
    EXPECT_TRUE(driver.calls().empty());

    next::gl.glUseProgram(3);
    next::egl.eglGetError();
    EXPECT_THAT(driver.calls(), ElementsAre(call("glUseProgram", 3), call("egl.eglGetError")));
}

// Catches a test that asks the driver for any name, that keeps stale addresses, or that needs eglGetProcAddress.
TEST(InitNextFunctions, ResolvesOnlyKnownExtensionFunctions) {
    RecordingDriver driver;
    static int marker;
    driver.answer<&egl_t::eglGetProcAddress>([](const char* name) {
        const bool has = std::string(name) == "glShadingRateQCOM";
        return has ? reinterpret_cast<__eglMustCastToProperFunctionPointerType>(&marker) : nullptr;
    });
    next::ext.glShadingRateEXT = reinterpret_cast<decltype(next::ext.glShadingRateEXT)>(&marker);
    bool qcomMissing = true;
    bool extMissing = false;
    bool unknownMissing = false;
    next::InitNextFunctions(driver.connection(), [&](const next::MissingTest& isMissing) {
        EXPECT_EQ(next::ext.glShadingRateEXT, nullptr) << "the slots are cleared before the first question";
        qcomMissing = isMissing("glShadingRateQCOM");
        extMissing = isMissing("glShadingRateEXT");
        const size_t asked = driver.calls().size();
        unknownMissing = isMissing("glDrawArrays");
        EXPECT_EQ(driver.calls().size(), asked) << "an unknown name is not asked for";
    });
    EXPECT_FALSE(qcomMissing);
    EXPECT_TRUE(extMissing);
    EXPECT_TRUE(unknownMissing);
    EXPECT_EQ(reinterpret_cast<void*>(next::ext.glShadingRateQCOM), static_cast<void*>(&marker));

    driver.connection()->egl.eglGetProcAddress = nullptr;
    next::InitNextFunctions(driver.connection(),
                            [](const next::MissingTest& isMissing) { EXPECT_TRUE(isMissing("glShadingRateQCOM")); });
    EXPECT_EQ(next::ext.glShadingRateQCOM, nullptr);
}

// Catches a query through the GL table, a token match, a second question to the driver.
TEST(HasExtensions, SearchesThePlatformsStringOnce) {
    const auto driver = RecordingDriver::installed();
    driver->answer<&platform_impl_t::glGetString>(
        [](GLenum) { return reinterpret_cast<const GLubyte*>("GL_ARM_shader_framebuffer_fetch_depth_stencil"); });
    EXPECT_TRUE(next::HasExtensions("GL_ARM_shader_framebuffer_fetch")) << "a longer name counts, on purpose";
    EXPECT_FALSE(next::HasExtensions("GL_EXT_shader_framebuffer_fetch"));
    EXPECT_TRUE(next::HasExtensions(""));
    EXPECT_THAT(driver->calls(), ElementsAre(call("platform.glGetString", GL_EXTENSIONS)));
}
