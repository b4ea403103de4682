#include "loader/OrvelLoader.h"

#include "LogCapture.h"
#include "RecordingDriver.h"
#include "loader/OrvelLegacyHooks.h"
#include "loader/OrvelThreadKey.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <gtest/gtest.h>

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
    gl_hooks_t::gl_t mGl = mDriver.gles2().gl;
    egl_t mEgl = mDriver.connection()->egl;
    platform_impl_t mPlatform = mDriver.connection()->platform;
};

OrvelStub& stub() { return *static_cast<OrvelStub*>(createInstance()); }

} // namespace

// Catches a loader-side table that no longer agrees with the slots: a caller built elsewhere goes by position; hooks of
// the wrong layer, a missing entry, and saved tables that were copied too late or twice.
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
    const auto driverSwap = connection.mDriver.connection()->platform.eglSwapBuffers;
    for (int start = 0; start < 2; ++start) { // the second finds its own hooks
        reinterpret_cast<void (*)(OrvelStub*, egl_connection_t*)>(slots[7])(&object, connection.mDriver.connection());
        EXPECT_EQ(connection.changedGl(), 22u) << "earlyInitOrvel does";
        EXPECT_EQ(connection.changedPlatform(), 2u);
        EXPECT_EQ(connection.changedEgl(), 0u);
        EXPECT_EQ(orvel::next::platform.eglSwapBuffers, driverSwap) << "saved before it was replaced, once";
    }
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
    void* const first = createInstance();
    destroyInstance();
    EXPECT_EQ(createInstance(), first) << "the loader may ask again after it let go";
    EXPECT_EQ(orvel::getThreadSpecific(), nullptr);
    orvel::setThreadSpecific(&driver.gles2());
    EXPECT_EQ(orvel::getThreadSpecific(), &driver.gles2());
    std::thread([] { EXPECT_EQ(orvel::getThreadSpecific(), nullptr); }).join();
    gl_hooks_t* hooks = orvel::getGLHooks();
    EXPECT_EQ(hooks, &gOrvelHooks);
    EXPECT_EQ(hooks->gl.glUniform1i, driver.gles2().gl.glUniform1i);
    EXPECT_NE(hooks->gl.glViewport, driver.gles2().gl.glViewport);
}
