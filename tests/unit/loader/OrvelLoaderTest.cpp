#include "loader/OrvelLoader.h"

#include "LogCapture.h"
#include "RecordingDriver.h"
#include "app/OrvelProcessorDataBase.h"
#include "loader/OrvelLegacyHooks.h"
#include "loader/OrvelThreadKey.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <thread>

using namespace android;
using android::orvel::OrvelSettings;

namespace {

/** A process of that type for which the tuning service answered. */
void enableFor(OrvelApplicationType type, const std::function<void(com::velmor::ravelo::OrvelPrefs&)>& adjust = {}) {
    auto& settings = OrvelSettings::getInstance();
    settings.mApplicationType = type;
    settings.mPrefs = new com::velmor::ravelo::OrvelPrefs;
    settings.mPrefs->mEnabled = true;
    if (adjust) {
        adjust(*settings.mPrefs);
    }
}

/** A connection that can tell which of its entries were replaced. */
class WatchedConnection {
public:
    size_t changedGl() { return differences(mGl, mDriver.gles2().gl); }
    size_t changedEgl() { return differences(mEgl, mDriver.connection()->egl); }
    size_t changedPlatform() { return differences(mPlatform, mDriver.connection()->platform); }
    bool untouched() { return changedGl() + changedEgl() + changedPlatform() == 0; }
    RecordingDriver mDriver;

private:
    template <typename Table>
    static size_t differences(const Table& before, const Table& after) {
        const auto* a = reinterpret_cast<void* const*>(&before);
        const auto* b = reinterpret_cast<void* const*>(&after);
        size_t count = 0;
        for (size_t i = 0; i < sizeof(Table) / sizeof(void*); ++i) {
            count += a[i] != b[i];
        }
        return count;
    }

    gl_hooks_t::gl_t mGl = mDriver.gles2().gl;
    egl_t mEgl = mDriver.connection()->egl;
    platform_impl_t mPlatform = mDriver.connection()->platform;
};

OrvelStub& stub() { return *static_cast<OrvelStub*>(createInstance()); }

} // namespace

// Catches a loader-side table that no longer agrees with the slots: a caller built elsewhere goes by position.
TEST(OrvelStubImpl, KeepsItsSlotOrder) {
    OrvelStub& object = stub();
    void** slots = *reinterpret_cast<void***>(&object);
    enableFor(APP_TYPE_YUANSHEN);
    gl_hooks_t table{};
    const auto getGLThreadSpecific = reinterpret_cast<gl_hooks_t* (*)(OrvelStub*, const gl_hooks_t*)>(slots[2]);
    EXPECT_EQ(getGLThreadSpecific(&object, &table), &table);
    EXPECT_EQ(getGLThreadSpecific(&object, nullptr), nullptr);
    reinterpret_cast<void (*)(OrvelStub*, int)>(slots[3])(&object, 3); // context made: nothing happens
    reinterpret_cast<void (*)(OrvelStub*)>(slots[4])(&object);         // context gone: likewise
    reinterpret_cast<void (*)(OrvelStub*)>(slots[6])(&object);         // swap ended: likewise
    EXPECT_TRUE(reinterpret_cast<bool (*)(OrvelStub*)>(slots[5])(&object)) << "isEnabled";
    WatchedConnection connection;
    reinterpret_cast<void (*)(OrvelStub*, egl_connection_t*)>(slots[8])(&object, connection.mDriver.connection());
    EXPECT_TRUE(connection.untouched()) << "lateInitOrvel never installs";
    reinterpret_cast<void (*)(OrvelStub*, egl_connection_t*)>(slots[7])(&object, connection.mDriver.connection());
    EXPECT_EQ(connection.changedGl(), 22u) << "earlyInitOrvel does";
}

// Catches hooks in a process that the service did not enable, and a second try that installs after all.
TEST(InitOrvel, LeavesADisabledProcessAloneForGood) {
    WatchedConnection connection;
    stub().earlyInitOrvel(connection.mDriver.connection()); // no service, no answer
    EXPECT_FALSE(stub().isEnabled());
    enableFor(APP_TYPE_YUANSHEN);
    stub().earlyInitOrvel(connection.mDriver.connection());
    EXPECT_TRUE(connection.untouched());
}

// Catches a crash on, or hooks in, a connection without GLES 2.
TEST(InitOrvel, IsDisabledByAMissingTable) {
    enableFor(APP_TYPE_YUANSHEN);
    WatchedConnection connection;
    connection.mDriver.connection()->hooks[egl_connection_t::GLESv2_INDEX] = nullptr;
    LogCapture log;
    stub().earlyInitOrvel(connection.mDriver.connection());
    EXPECT_FALSE(stub().isEnabled());
    EXPECT_TRUE(connection.untouched());
    EXPECT_NE(OrvelSettings::getInstance().mPrefs, nullptr) << "the preferences stay";
    EXPECT_EQ(log.texts(ANDROID_LOG_ERROR).size(), 1u);
}

// Catches a null connection from a loader that has no driver.
TEST(InitOrvel, TakesANullConnectionForAMissingTable) {
    enableFor(APP_TYPE_YUANSHEN);
    stub().earlyInitOrvel(nullptr);
    EXPECT_FALSE(stub().isEnabled());
}

// Catches hooks of the wrong layer, a missing entry, and saved tables that were copied too late.
TEST(InitOrvel, GivesALegacyProcessTheWholeHookTable) {
    enableFor(APP_TYPE_HKRPG);
    WatchedConnection connection;
    const auto driverSwap = connection.mDriver.connection()->platform.eglSwapBuffers;
    stub().earlyInitOrvel(connection.mDriver.connection());
    EXPECT_EQ(connection.changedGl(), 22u);
    EXPECT_EQ(connection.changedPlatform(), 2u);
    EXPECT_EQ(connection.changedEgl(), 0u);
    EXPECT_NE(connection.mDriver.connection()->platform.eglSwapBuffers, driverSwap);
    EXPECT_EQ(orvel::next::platform.eglSwapBuffers, driverSwap);
    EXPECT_EQ(OrvelSettings::getInstance().mPrefs->mEnabled, true);

    const gl_hooks_t first = connection.mDriver.gles2();
    stub().earlyInitOrvel(connection.mDriver.connection());
    EXPECT_EQ(std::memcmp(&first, &connection.mDriver.gles2(), sizeof first), 0) << "once per process";
}

// Catches a start that never asks which modules the driver can serve, or asks after the answer was needed.
TEST(InitOrvel, DropsModulesWhoseFunctionsTheDriverLacks) {
    enableFor(APP_TYPE_SGAME);
    auto* processorData = OrvelSettings::getInstance().mPrefs->mProcessorData;
    processorData->InitModuleIdArray(1 | 2 | 4);
    processorData->ColloctExtensionFunctions({{1, {"glShadingRateQCOM", "glShadingRateEXT"}}, {2, {"glNoSuchThing"}}});
    WatchedConnection connection; // its eglGetProcAddress answers null
    stub().earlyInitOrvel(connection.mDriver.connection());
    EXPECT_EQ(processorData->GetModuleIds(), std::vector<uint32_t>{4});
}

class ShadingRateFunctions : public testing::TestWithParam<bool> {};

// Catches a configured shading rate that no draw can ever set, and a driver that is asked although none is configured.
TEST_P(ShadingRateFunctions, AreResolvedWhereARateIsConfigured) {
    RecordingDriver driver;
    driver.answer<&egl_t::eglGetProcAddress>([](const char*) {
        return reinterpret_cast<__eglMustCastToProperFunctionPointerType>(&createInstance); // any function at all
    });
    enableFor(APP_TYPE_YUANSHEN, [](auto& prefs) { prefs.mShadingRateEnabled = GetParam(); });
    stub().earlyInitOrvel(driver.connection());
    EXPECT_EQ(orvel::next::ext.glShadingRateEXT != nullptr, GetParam());
    EXPECT_EQ(orvel::next::ext.glShadingRateQCOM != nullptr, GetParam());
    EXPECT_EQ(driver.calls().size(), GetParam() ? 2u : 0u);
}

INSTANTIATE_TEST_SUITE_P(Configured, ShadingRateFunctions, testing::Bool());

struct Override {
    OrvelApplicationType type;
    bool anisotropy;
    bool dynamicInterval;
    size_t gl;
    size_t platform;
};

class FrameworkOverrides : public testing::TestWithParam<Override> {};

// Catches an override that looks at the type where the preference alone decides, and the other way round.
TEST_P(FrameworkOverrides, FollowTheirConditions) {
    enableFor(GetParam().type, [](auto& prefs) {
        prefs.mTexAnisotropyEnabled = GetParam().anisotropy;
        prefs.mDynamicDFIEnabled = GetParam().dynamicInterval;
    });
    WatchedConnection connection;
    const auto before = connection.mDriver.connection()->platform.eglSwapBuffers;
    stub().earlyInitOrvel(connection.mDriver.connection());
    EXPECT_EQ(connection.changedGl(), GetParam().gl);
    EXPECT_EQ(connection.changedPlatform(), GetParam().platform);
    EXPECT_EQ(gSwapbuffers, GetParam().platform ? before : nullptr);
}

INSTANTIATE_TEST_SUITE_P(Types, FrameworkOverrides,
                         testing::Values(Override{APP_TYPE_SGAME, false, true, 0, 1},
                                         Override{APP_TYPE_SGAME, true, false, 1, 0},
                                         Override{APP_TYPE_PUBG, true, true, 1, 0},
                                         Override{APP_TYPE_BILI, false, true, 0, 0},
                                         Override{APP_TYPE_7, false, false, 0, 0}));

// Catches a key that is shared between threads, and a private table that is not a copy of the thread's own.
TEST(ThreadKey, GivesTheCallingThreadsTableWithHooksInACopy) {
    RecordingDriver driver;
    stub();
    destroyInstance();
    EXPECT_EQ(orvel::getThreadSpecific(), nullptr);
    orvel::setThreadSpecific(&driver.gles2());
    EXPECT_EQ(orvel::getThreadSpecific(), &driver.gles2());
    std::thread([] { EXPECT_EQ(orvel::getThreadSpecific(), nullptr); }).join();
    gl_hooks_t* hooks = orvel::getGLHooks();
    EXPECT_EQ(hooks, &gOrvelHooks);
    EXPECT_EQ(hooks->gl.glUniform1i, driver.gles2().gl.glUniform1i);
    EXPECT_NE(hooks->gl.glViewport, driver.gles2().gl.glViewport);
}

// Catches a second object: the loader may ask again after it let go.
TEST(CreateInstance, AnswersTheSameObjectEveryTime) {
    void* first = createInstance();
    destroyInstance();
    EXPECT_EQ(createInstance(), first);
}
