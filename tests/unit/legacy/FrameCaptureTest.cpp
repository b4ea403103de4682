#include "legacy/FrameCapture.h"

#include "FakeClock.h"
#include "LogCapture.h"
#include "RecordingDriver.h"
#include "TestRoot.h"
#include "next/OrvelNext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"
#include "settings/orvel_modify_params.h"

#include <GLES2/gl2ext.h>
#include <gmock/gmock.h>

using namespace android;
using android::orvel::next::GlTable;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

const auto kDisplay = reinterpret_cast<EGLDisplay>(1);
const auto kSurface = reinterpret_cast<EGLSurface>(2);

/** A driver with a surface, a game's bindings, and names for what is made. */
class FrameCapture : public testing::Test {
protected:
    FrameCapture() {
        mDriver->answer<&platform_impl_t::eglQuerySurface>(
            [this](EGLDisplay display, EGLSurface surface, EGLint what, EGLint* value) {
                EXPECT_EQ(display, kDisplay);
                EXPECT_EQ(surface, kSurface);
                *value = what == EGL_WIDTH ? mWidth : mHeight;
                return EGLBoolean(EGL_TRUE);
            });
        mDriver->answer<&platform_impl_t::eglSwapBuffers>([](EGLDisplay, EGLSurface) { return EGLBoolean(7); });
        mDriver->answer<&GlTable::glGetIntegerv>([](GLenum what, GLint* value) {
            *value = what == GL_TEXTURE_BINDING_2D ? 41 : what == GL_DRAW_FRAMEBUFFER_BINDING ? 42 : 43;
        });
        mDriver->answer<&GlTable::glGenTextures>([this](GLsizei, GLuint* name) { *name = mNextName++; });
        mDriver->answer<&GlTable::glGenFramebuffers>([this](GLsizei, GLuint* name) { *name = mNextName++; });
        // The record shows where names and answers stood, which differs from run to run.
        mDriver->answer<&GlTable::glDeleteTextures>([this](GLsizei, const GLuint* name) { mDeleted.push_back(*name); });
        mDriver->answer<&GlTable::glDeleteFramebuffers>(
            [this](GLsizei, const GLuint* name) { mDeleted.push_back(*name); });
    }

    /** What was called since the last time but for queries, names made and names deleted. */
    Calls drawn() {
        Calls calls = mDriver->callsWithout({"glGen", "glDelete", "glGet", "platform.eglQuery"});
        mDriver->forget();
        return calls;
    }
    Calls saved() {
        saveFrame(kDisplay, kSurface);
        return drawn();
    }
    Calls swapped(EGLBoolean expected) {
        EXPECT_EQ(swapFrame(kDisplay, kSurface, EGL_TRUE), expected);
        return drawn();
    }

    FakeClock mClock;
    std::unique_ptr<RecordingDriver> mDriver = RecordingDriver::installed();
    EGLint mWidth = 64;
    EGLint mHeight = 32;
    GLuint mNextName = 5;
    std::vector<GLuint> mDeleted;
};

Calls blit(GLuint read, GLuint draw, GLint width, GLint height, bool readFirst) {
    const std::string binds[] = {call("glBindFramebuffer", GL_READ_FRAMEBUFFER, read),
                                 call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, draw)};
    return {binds[!readFirst], binds[readFirst],
            call("glBlitFramebuffer", 0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST)};
}

std::string parameter(GLenum name, GLint value) { return call("glTexParameteri", GL_TEXTURE_2D, name, value); }

Calls operator+(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/** A new copy of 64 x 32 or another size, which is always followed by the blit into it. */
Calls creation(GLuint texture, GLint width, GLint height) {
    return {call("glBindTexture", GL_TEXTURE_2D, texture),
            call("glTexStorage2D", GL_TEXTURE_2D, 1, GL_RGBA8, width, height),
            parameter(GL_TEXTURE_BASE_LEVEL, 0),
            parameter(GL_TEXTURE_MAX_LEVEL, 0),
            parameter(GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE),
            parameter(GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE),
            parameter(GL_TEXTURE_WRAP_R, GL_CLAMP_TO_EDGE),
            parameter(GL_TEXTURE_MIN_FILTER, GL_LINEAR),
            parameter(GL_TEXTURE_MAG_FILTER, GL_LINEAR),
            parameter(GL_TEXTURE_SRGB_DECODE_EXT, GL_DECODE_EXT),
            call("glBindTexture", GL_TEXTURE_2D, 41),
            call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, texture + 1),
            call("glFramebufferTexture2D", GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0)};
}

// Catches a frame that is kept too early or too late, presented twice or never, through a hook, or whose second swap's
// result is lost; a copy that is made anew in each frame or keeps the size of an earlier surface.
TEST_F(FrameCapture, RepeatsFramesAtTheInterval) {
    const LogCapture log;
    const std::string swap = call("platform.eglSwapBuffers", kDisplay, kSurface);
    mDFIInterval = 16;
    EXPECT_THAT(saved(), ElementsAreArray(creation(5, 64, 32) + blit(0, 6, 64, 32, true))) << "the first at once";
    EXPECT_THAT(swapped(7), ElementsAreArray(blit(6, 0, 64, 32, false) + Calls{swap}));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(swapped(EGL_TRUE), IsEmpty());

    mClock.advanceNanos(15'999'999);
    EXPECT_THAT(saved(), IsEmpty());
    EXPECT_THAT(swapped(EGL_TRUE), IsEmpty());
    mClock.advanceNanos(1);
    EXPECT_THAT(saved(), ElementsAreArray(blit(0, 6, 64, 32, true)));
    swapped(7);

    mHeight *= 2;
    mClock.advanceMillis(16);
    EXPECT_THAT(saved(), ElementsAreArray(creation(7, 64, 64) + blit(0, 8, 64, 64, true)));
    EXPECT_THAT(mDeleted, ElementsAre(5, 6));
    swapped(7);
    mWidth = 0; // a surface that the driver does not know
    mClock.advanceMillis(16);
    EXPECT_THAT(saved(), IsEmpty());
    mWidth = 64;
    mDFIInterval = 0; // off
    EXPECT_THAT(saved(), IsEmpty());
}

// Catches an interval that is kept for a slow game, that is read before there is a rate, or that ignores the setting.
TEST_F(FrameCapture, TakesTheIntervalFromTheFileWhileTheGameIsFast) {
    const TestRoot root;
    root.write("/data/system/mcd/dfi", "sgame 30\n");
    orvel::OrvelSettings& settings = orvel::OrvelSettings::getInstance();
    settings.mPackageName = "com.tencent.tmgp.sgame";
    settings.mPrefs = new com::velmor::ravelo::OrvelPrefs;
    const auto play = [&](int frames, int millis) {
        for (int i = 0; i < frames; ++i) {
            mClock.advanceMillis(millis);
            saveFrame(kDisplay, kSurface);
        }
        return mDFIInterval;
    };
    mDFIInterval = 500;
    EXPECT_EQ(play(60, 20), 500) << "the setting is off";
    settings.mPrefs->mDynamicDFIEnabled = true;
    EXPECT_EQ(play(50, 20), -1) << "the first has no duration";
    EXPECT_EQ(play(1, 20), 30);
    EXPECT_EQ(play(49, 28), 30);
    EXPECT_EQ(play(1, 28), 30) << "36 frames per second are enough";
    EXPECT_EQ(play(50, 29), -1);
}

// ---- screenshots --------------------------------------------------------------------------------------

class Screenshot : public FrameCapture {
protected:
    Screenshot() {
        mGameSCSize = {30, 20};
        mTargetTexWidthYuanshen = 40;
        mTargetTexHeightYuanshen = 50;
    }
    int read(int x, int y, int width, int height) {
        return processGameCapture(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, mPixels);
    }
    char mPixels[1];
};

// Catches a source extent that is put right, a read of the wrong framebuffer, bindings that stay ours.
TEST_F(Screenshot, IsServedFromAScaledCopy) {
    const LogCapture log;
    EXPECT_EQ(read(0, 0, 30, 20), 1);
    EXPECT_THAT(
        drawn(),
        ElementsAre(call("glBindTexture", GL_TEXTURE_2D, 5), call("glTexStorage2D", GL_TEXTURE_2D, 1, GL_RGBA8, 30, 20),
                    parameter(GL_TEXTURE_MIN_FILTER, GL_LINEAR), parameter(GL_TEXTURE_MAG_FILTER, GL_LINEAR),
                    parameter(GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE), parameter(GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE),
                    call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, 6),
                    call("glFramebufferTexture2D", GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 5, 0),
                    call("glBlitFramebuffer", 0, 0, 53, 125, 0, 0, 30, 20, GL_COLOR_BUFFER_BIT, GL_LINEAR),
                    call("glBindFramebuffer", GL_READ_FRAMEBUFFER, 6),
                    call("glReadPixels", 0, 0, 30, 20, GL_RGBA, GL_UNSIGNED_BYTE, &mPixels[0]),
                    call("glBindFramebuffer", GL_READ_FRAMEBUFFER, 43),
                    call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, 42), call("glBindTexture", GL_TEXTURE_2D, 41)));
    EXPECT_THAT(mDeleted, ElementsAre(5, 6));
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_DEBUG, "processGameCapture, start: 0x0, size: "
                                                                    "30x20->40x50, format: 1908, type: 1401, "}));
}

// Catches a read that is not the screenshot and is served from a copy all the same.
TEST_F(Screenshot, LeavesOtherReadsToTheDriver) {
    EXPECT_EQ(read(1, 0, 30, 20), 0);
    EXPECT_EQ(read(0, 0, 31, 20), 0);
    EXPECT_EQ(read(0, 0, 30, 19), 0);
    mTargetTexHeightYuanshen = 20;
    EXPECT_EQ(read(0, 0, 30, 20), 0) << "raised in one dimension only";
    mTargetTexHeightYuanshen = 50;
    mTargetTexWidthYuanshen = 30;
    EXPECT_EQ(read(0, 0, 30, 20), 0);
    mTargetTexWidthYuanshen = 40;
    mGameSCSize = {0, 0};
    EXPECT_EQ(read(0, 0, 0, 0), 0);
    EXPECT_THAT(mDriver->calls(), IsEmpty());
}

} // namespace
