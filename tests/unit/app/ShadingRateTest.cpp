// What sets the shading rate: the component, the modules that it keeps, the small-window module.
#include "LogCapture.h"
#include "RecordingDriver.h"
#include "TestRoot.h"
#include "app/FrameworkProcess.h"
#include "app/OrvelModuleBase.h"
#include "app/OrvelProcessorBase.h"
#include "app/VRSComponent.h"
#include "next/OrvelNext.h"
#include "settings/GameInfoMonitor.h"

#include <gmock/gmock.h>

#include <array>

using namespace android;
using namespace android::orvel;
using namespace android::orvel::app;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** A driver that has the extension functions whose names contain one of these; the modules' check is over. */
class Driver : public RecordingDriver {
public:
    explicit Driver(const std::vector<std::string>& has, OrvelProcessorDataBase* data = nullptr) {
        answer<&egl_t::eglGetProcAddress>([this, has](const char* asked) {
            const std::string name = asked;
            const bool there =
                std::any_of(has.begin(), has.end(), [&](const auto& part) { return name.find(part) != name.npos; });
            return there ? entry(name) : nullptr;
        });
        next::InitNextFunctions(connection(), [data](const next::MissingTest& isMissing) {
            if (data) {
                data->CheckExtensionFunctions(isMissing);
                return;
            }
            for (const char* name : {"glShadingRateQCOM", "glShadingRateEXT", "glFramebufferShadingRateEXT"}) {
                isMissing(name);
            }
        });
        forget();
    }

private:
    __eglMustCastToProperFunctionPointerType entry(const std::string& wanted) {
#define GL_ENTRY(Result, name, params, args, providers)                                                                \
    if (wanted == #name) {                                                                                             \
        return reinterpret_cast<__eglMustCastToProperFunctionPointerType>(gles2().gl.name);                            \
    }
#include <entries/gl_entries.in>
#undef GL_ENTRY
        return nullptr;
    }
};

// Catches a call too many or too few around the image, a size asked for twice, and texel sizes that were "corrected".
TEST(VRSComponent, MakesAndAttachesImages) {
    Driver driver({"EXT"});
    auto& component = VRSComponent::GetInstance();
    driver.answer<&next::GlTable::glGenTextures>([](GLsizei, GLuint* names) { *names = 7; });
    driver.answer<&next::GlTable::glGetTexLevelParameteriv>(
        [](GLenum, GLint, GLenum name, GLint* value) { *value = name == GL_TEXTURE_WIDTH ? 2220 : 932; });
    ShadingRateImageInfo image{0, 277, 116};
    FrameBufferInfo framebuffer{3, 4, 0, 0};
    EXPECT_TRUE(component.CreateVRSFramebuffer(GL_FRAMEBUFFER, 9, framebuffer, image));
    const std::string attach =
        call("glFramebufferShadingRateEXT", GL_FRAMEBUFFER, GL_SHADING_RATE_ATTACHMENT_EXT, 7, 0, 1, 2, 2);
    EXPECT_THAT(driver.callsWithout({"glGen", "glGetTexLevelParameteriv"}),
                ElementsAre(call("glBindTexture", GL_TEXTURE_2D, 4), call("glBindTexture", GL_TEXTURE_2D, 9),
                            call("glBindTexture", GL_TEXTURE_2D, 7),
                            call("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT),
                            call("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT),
                            call("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR),
                            call("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR),
                            call("glTexStorage2D", GL_TEXTURE_2D, 1, GL_R8UI, 277, 116),
                            call("glBindTexture", GL_TEXTURE_2D, 0), attach));
    EXPECT_EQ(framebuffer.width, 2220);
    EXPECT_EQ(framebuffer.height, 932);
    driver.forget();
    EXPECT_TRUE(component.CreateVRSFramebuffer(GL_FRAMEBUFFER, 9, framebuffer, image));
    EXPECT_THAT(driver.calls(), ElementsAre(attach));
    driver.forget();
    ShadingRateImageInfo none{0, 0, 116};
    EXPECT_FALSE(component.CreateVRSFramebuffer(GL_FRAMEBUFFER, 9, framebuffer, none));
    EXPECT_EQ(none.texture, 0u);
    next::ext.glFramebufferShadingRateEXT = nullptr; // the others are there
    EXPECT_FALSE(component.CreateVRSFramebuffer(GL_FRAMEBUFFER, 9, framebuffer, image));
    EXPECT_THAT(driver.calls(), IsEmpty());
}

// Catches images that are made for a driver without them, and a rate that is set through nothing.
TEST(VRSComponent, DoesWhatTheDriverCan) {
    auto& component = VRSComponent::GetInstance();
    ShadingRateImageInfo image{0, 277, 116};
    FrameBufferInfo framebuffer{3, 4, 0, 0};
    {
        const Driver driver({"QCOM"});
        component.Init();
        next::ext.glFramebufferShadingRateEXT = next::gl.glFramebufferShadingRateEXT;
        EXPECT_TRUE(component.CreateShadingrateImage(image)); // there is nothing to be done
        EXPECT_FALSE(component.CreateVRSFramebuffer(GL_FRAMEBUFFER, 9, framebuffer, image));
        EXPECT_THAT(driver.calls(), IsEmpty());
    }
    const Driver driver({});
    component.Init();
    component.SetShadingRate(GL_SHADING_RATE_2X2_PIXELS_EXT);
    EXPECT_THAT(driver.calls(), IsEmpty());
}

// Catches an upload that leaves our texture or buffer bound, writes past the caller's memory, or goes to texture 0.
TEST(VRSComponent, Uploads) {
    Driver driver({"EXT"});
    auto& component = VRSComponent::GetInstance();
    std::array<uint8_t, 7> memory{};
    const auto uploadOf = [&](const void* source) {
        return Calls{call("glBindTexture", GL_TEXTURE_2D, 7),
                     call("glTexSubImage2D", GL_TEXTURE_2D, 0, 0, 0, 3, 2, GL_RED_INTEGER, GL_UNSIGNED_BYTE, source),
                     call("glBindTexture", GL_TEXTURE_2D, 9)};
    };
    EXPECT_TRUE(component.UpdateShadingRateImageWithVal(7, memory.data(), 9, 3, 2, 5));
    EXPECT_THAT(memory, ElementsAre(5, 5, 5, 5, 5, 5, 0));
    EXPECT_EQ(driver.calls(), uploadOf(memory.data()));
    driver.forget();
    EXPECT_TRUE(component.UpdateShadingRateImageWithPBO(7, 6, 9, 3, 2));
    Calls calls = uploadOf(nullptr);
    calls.insert(calls.begin(), call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, 6));
    calls.push_back(call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, 0));
    EXPECT_EQ(driver.calls(), calls);

    driver.forget();
    EXPECT_FALSE(component.UpdateShadingRateImageWithVal(7, memory.data(), 9, -3, 2, 5));
    EXPECT_FALSE(component.UpdateShadingRateImageWithVal(0, memory.data(), 9, 3, 2, 6));
    EXPECT_EQ(memory[0], 5);
    EXPECT_FALSE(component.UpdateShadingRateImageWithVal(7, nullptr, 9, 3, 2, 5));
    EXPECT_FALSE(component.UpdateShadingRateImageWithData(7, nullptr, 9, 3, 2));
    EXPECT_FALSE(component.UpdateShadingRateImageWithData(0, memory.data(), 9, 3, 2));
    EXPECT_FALSE(component.UpdateShadingRateImageWithPBO(7, 0, 9, 3, 2));
    EXPECT_FALSE(component.UpdateShadingRateImageWithPBO(0, 6, 9, 3, 2));
    component.UnmapPixBufferObj(0);
    EXPECT_THAT(driver.calls(), IsEmpty());

    GLuint pbo = 0;
    driver.answer<&next::GlTable::glGenBuffers>([](GLsizei, GLuint* names) { *names = 6; });
    driver.answer<&next::GlTable::glMapBufferRange>(
        [&](GLenum, GLintptr, GLsizeiptr, GLbitfield) -> void* { return memory.data(); });
    EXPECT_EQ(component.CreatePixBufferObj(pbo, 6), memory.data());
    component.UnmapPixBufferObj(pbo);
    EXPECT_THAT(driver.callsWithout({"glGen"}),
                ElementsAre(call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, 6),
                            call("glBufferData", GL_PIXEL_UNPACK_BUFFER, 6, nullptr, GL_DYNAMIC_DRAW),
                            call("glMapBufferRange", GL_PIXEL_UNPACK_BUFFER, 0, 6, GL_MAP_WRITE_BIT),
                            call("glUnmapBuffer", GL_PIXEL_UNPACK_BUFFER),
                            call("glBindBuffer", GL_PIXEL_UNPACK_BUFFER, 0)));
}

struct Offered {
    OrvelApplicationType type;
    std::vector<std::string> has;
    std::vector<uint32_t> left; // of the mask 1 | 2 | 0x40000
};
void PrintTo(const Offered& offered, std::ostream* out) {
    *out << "type " << offered.type << " with " << testing::PrintToString(offered.has);
}

class KeptBy : public testing::TestWithParam<Offered> {};

// Catches a module that goes although one of the two extensions is there, or stays though neither is.
TEST_P(KeptBy, EitherExtension) {
    const Offered& offered = GetParam();
    auto& data = beFramework(offered.type, 1 | 2 | kSharedShading);
    data.ColloctModuleExtensionFunctions();
    LogCapture log;
    const Driver driver(offered.has, &data);
    EXPECT_EQ(data.GetModuleIds(), offered.left);
    EXPECT_EQ(log.texts(ANDROID_LOG_INFO).size(), 1u); // says what is left
    EXPECT_TRUE(VRSComponent::checkQcomExtRemoved("glOther", [](const std::string&) { return true; }));
}
INSTANTIATE_TEST_SUITE_P(
    Extensions, KeptBy,
    testing::Values(Offered{APP_TYPE_SGAME, {"QCOM"}, {1, 2, kSharedShading}},
                    Offered{APP_TYPE_SGAME, {"EXT"}, {1, 2, kSharedShading}}, Offered{APP_TYPE_SGAME, {}, {2}},
                    // Half a family: what is asked for last decides, and the small-window module needs less.
                    Offered{APP_TYPE_SGAME, {"glShadingRateEXT"}, {2, kSharedShading}},
                    Offered{APP_TYPE_PUBG, {"EXT"}, {1, 2, kSharedShading}}, Offered{APP_TYPE_BILI, {}, {1, 2}}));

// Catches a rate that is set at every frame, one that outlives the small window, and a log line too many.
TEST(SmallWindow, SetsTheRateWhenItChanges) {
    const TestRoot root;
    beFramework(APP_TYPE_BILI, kSharedShading).ColloctModuleExtensionFunctions();
    Driver driver({"EXT"});
    OrvelProcessorBase* processor = CreateGLProcessor();
    processor->OnBegin();
    LogCapture log;
    const auto framesOf = [&](bool small) {
        auto* info = const_cast<GameInfo*>(OrvelSettings::getInstance().getGameInfo());
        info->mSmallWindow = small;
        driver.forget();
        for (int frame = 0; frame < 3; ++frame) {
            processor->FrameEnd();
            processor->PostFrameEnd();
        }
        return driver.calls();
    };
    EXPECT_THAT(framesOf(false), IsEmpty());
    EXPECT_THAT(framesOf(true), ElementsAre(call("glShadingRateEXT", GL_SHADING_RATE_2X2_PIXELS_EXT)));
    EXPECT_THAT(framesOf(false), ElementsAre(call("glShadingRateEXT", GL_SHADING_RATE_1X1_PIXELS_EXT)));
    EXPECT_THAT(log.texts(ANDROID_LOG_DEBUG), ElementsAre("sv flag p3: 3"));
    processor->OnEnd();
    ReleaseGLProcessor(processor);
}

} // namespace
