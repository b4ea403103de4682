// Makes the test's process a game: a private system root, a package, a tuning service, and a context on Mesa.
#pragma once

#include "DesktopBinder.h"

#include <EGL/egl.h>
#include <GLES3/gl32.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utils/String8.h>

/** Construct it before the first EGL call: the loader identifies the process then. */
class GameProcess {
public:
    /** @param configuration what the tuning service answers; without one there is no service */
    explicit GameProcess(const std::string& package, const char* configuration = nullptr)
        : mRoot(testing::TempDir() + "orvel-game-" + std::to_string(getpid())) {
        std::filesystem::create_directories(mRoot);
        setenv("EGL_PLATFORM", "surfaceless", 1);
        setenv("ORVEL_ROOT", mRoot.c_str(), 1);
        setenv("ORVEL_PACKAGE", package.c_str(), 1);
        if (configuration) {
            mListener = android::desktop::listenAsService(mRoot, "velmor.ravelo");
            const android::String16 answer(configuration);
            mService = std::thread([listener = mListener, answer] {
                android::desktop::serveClients(listener,
                                               [answer](uint32_t, const android::Parcel&, android::Parcel* reply) {
                                                   reply->writeInt32(0);
                                                   reply->writeString16(answer);
                                                   return android::status_t(android::NO_ERROR);
                                               });
            });
        }
    }

    ~GameProcess() {
        if (mListener >= 0) {
            shutdown(mListener, SHUT_RDWR);
            mService.join();
            close(mListener);
        }
        std::filesystem::remove_all(mRoot);
    }

    /** Makes a context of that GLES version current on a pbuffer. */
    void makeCurrent(EGLint version = 3, EGLint width = 64, EGLint height = 64) {
        mDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
        ASSERT_TRUE(eglInitialize(mDisplay, nullptr, nullptr));
        const EGLint wanted[] = {EGL_SURFACE_TYPE,
                                 EGL_PBUFFER_BIT,
                                 EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_ES2_BIT,
                                 EGL_RED_SIZE,
                                 8,
                                 EGL_ALPHA_SIZE,
                                 8,
                                 EGL_DEPTH_SIZE,
                                 24,
                                 EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        ASSERT_TRUE(eglChooseConfig(mDisplay, wanted, &config, 1, &count));
        ASSERT_EQ(count, 1);
        const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
        mSurface = eglCreatePbufferSurface(mDisplay, config, size);
        const EGLint attributes[] = {EGL_CONTEXT_CLIENT_VERSION, version, EGL_NONE};
        mContext = eglCreateContext(mDisplay, config, EGL_NO_CONTEXT, attributes);
        ASSERT_NE(mContext, EGL_NO_CONTEXT);
        ASSERT_TRUE(eglMakeCurrent(mDisplay, mSurface, mSurface, mContext));
    }

    EGLDisplay display() const { return mDisplay; }
    EGLSurface surface() const { return mSurface; }
    const std::string& root() const { return mRoot; }

    /** What the library logged so far. */
    std::string log() const {
        std::ifstream file(mRoot + "/orvel/log");
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    const std::string mRoot;
    int mListener = -1;
    std::thread mService;
    EGLDisplay mDisplay = EGL_NO_DISPLAY;
    EGLSurface mSurface = EGL_NO_SURFACE;
    EGLContext mContext = EGL_NO_CONTEXT;
};
