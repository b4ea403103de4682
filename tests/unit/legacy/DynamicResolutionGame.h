// A game for the tests of dynamic resolution.
#pragma once

#include "FakeClock.h"
#include "LogCapture.h"
#include "RecordingDriver.h"
#include "TestRoot.h"
#include "legacy/OrvelDRR.h"
#include "loader/OrvelLegacyHooks.h"
#include "next/OrvelNext.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <regex>
#include <string>
#include <vector>

namespace com::velmor::ravelo {
inline void PrintTo(const TEX_SIZE& size, std::ostream* out) { *out << size.width << 'x' << size.height; }
} // namespace com::velmor::ravelo

using TEX_SIZE = com::velmor::ravelo::TEX_SIZE;
using GlTable = android::orvel::next::GlTable;

inline constexpr TEX_SIZE kBase = {1920, 1080};
inline constexpr TEX_SIZE kSmall = {1280, 720};
inline constexpr TEX_SIZE kTiny = {960, 540};
inline constexpr TEX_SIZE kIllegal = {333, 444};

/** A game that calls the hooked table; what reaches the driver is recorded. New names count up from 100 and 200. */
class DynamicResolution : public testing::Test {
protected:
    void SetUp() override {
        android::installVoHooks(mDriver->connection());
        mDriver->answer<&GlTable::glGenTextures>([this](GLsizei, GLuint* name) { *name = mNextTexture++; });
        mDriver->answer<&GlTable::glGenFramebuffers>([this](GLsizei, GLuint* name) { *name = mNextFramebuffer++; });
        mDriver->answer<&GlTable::glDrawBuffers>([this](GLsizei, const GLenum* b) { mDrawBuffers.push_back(*b); });
        mDriver->answer<&GlTable::glDeleteFramebuffers>(
            [this](GLsizei, const GLuint* name) { mGone.push_back(*name); });
    }

    void start(const std::string& package = "com.example.game", bool debug = false, int interval = 10) {
        // The last available size shares its height with kSmall, the one before its width.
        mDrr = std::make_unique<android::orvel::OrvelDRR>(
            true, debug, package, interval, std::vector{kBase, TEX_SIZE{2400, 1080}},
            std::vector{kSmall, kTiny, TEX_SIZE{1280, 800}, TEX_SIZE{1000, 720}}, std::vector{kIllegal});
        android::mOrvelDRR = mDrr.get();
        android::mEnableDynamicResolution = true;
    }
    void allocate(GLuint texture, GLenum format = GL_RGBA8, TEX_SIZE size = kBase) {
        mGame.glBindTexture(GL_TEXTURE_2D, texture);
        mGame.glTexStorage2D(GL_TEXTURE_2D, 1, format, size.width, size.height);
    }
    void attach(GLuint framebuffer, GLenum point, GLuint texture) {
        mGame.glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        mGame.glFramebufferTexture2D(GL_FRAMEBUFFER, point, GL_TEXTURE_2D, texture, 0);
    }
    void ask(const std::string& line) { mRoot.write("/data/system/mcd/dr", line); }
    void swap() {
        mClock.advanceMillis(10);
        mPlatform.eglSwapBuffers(nullptr, nullptr);
    }
    void switchTo(TEX_SIZE size) {
        ask("game " + std::to_string(size.width) + " " + std::to_string(size.height));
        swap();
    }
    /** What a size that the game passes becomes. */
    TEX_SIZE sizeOf(TEX_SIZE size) const {
        android::drrModifySizeParams(size.width, size.height);
        return size;
    }
    TEX_SIZE applied() const { return sizeOf(kBase); }
    GLuint bound(GLuint texture) {
        mDriver->forget();
        mGame.glBindTexture(GL_TEXTURE_2D, texture);
        GLuint name = 0;
        EXPECT_EQ(std::sscanf(mDriver->calls().at(0).c_str(), "glBindTexture(3553, %u)", &name), 1);
        return name;
    }
    /** What reached the driver's GL, without the addresses. */
    Calls glCalls() const {
        Calls calls;
        for (const std::string& line : mDriver->calls()) {
            if (line.find("platform.") != 0) {
                calls.push_back(std::regex_replace(line, std::regex("0x[0-9a-f]+"), "*"));
            }
        }
        return calls;
    }

    void TearDown() override {
        android::mEnableDynamicResolution = false;
        android::mOrvelDRR = nullptr;
    }

    TestRoot mRoot;
    FakeClock mClock;
    std::unique_ptr<RecordingDriver> mDriver = RecordingDriver::installed();
    std::unique_ptr<android::orvel::OrvelDRR> mDrr;
    GlTable& mGame = mDriver->gles2().gl;
    android::platform_impl_t& mPlatform = mDriver->connection()->platform;
    GLuint mNextTexture = 100;
    GLuint mNextFramebuffer = 200;
    std::vector<GLenum> mDrawBuffers;
    std::vector<GLuint> mGone;
};
