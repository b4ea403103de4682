// Makes the test's process a game: a private system root, a package, a tuning service, and contexts on Mesa.
#pragma once

#include "DesktopBinder.h"
#include "TestRoot.h"

#include <EGL/egl.h>
#include <GLES3/gl32.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utils/String8.h>

/** A context without a window and its surface. */
struct Context {
    explicit Context(EGLint version = 3, EGLint size = 64) {
        display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
        EXPECT_TRUE(eglInitialize(display, nullptr, nullptr));
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
        EXPECT_TRUE(eglChooseConfig(display, wanted, &config, 1, &count));
        const EGLint extent[] = {EGL_WIDTH, size, EGL_HEIGHT, size, EGL_NONE};
        surface = eglCreatePbufferSurface(display, config, extent);
        const EGLint attributes[] = {EGL_CONTEXT_CLIENT_VERSION, version, EGL_NONE};
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, attributes);
        EXPECT_NE(context, EGL_NO_CONTEXT);
    }
    EGLBoolean makeCurrent() const { return eglMakeCurrent(display, surface, surface, context); }
    EGLBoolean leave() const { return eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT); }
    EGLBoolean swap() const { return eglSwapBuffers(display, surface); }

    EGLDisplay display;
    EGLSurface surface;
    EGLContext context;
};

/** @return what comes out of a pipe until nobody can write any more; closes it */
inline std::string readToEnd(int pipe) {
    std::string text;
    char part[4096];
    for (ssize_t count = 0; (count = read(pipe, part, sizeof part)) > 0;) {
        text.append(part, static_cast<size_t>(count));
    }
    close(pipe);
    return text;
}

/** What the tuning service answers, whatever it is asked. */
struct Answer {
    std::string text = {};
    int32_t exception = 0;
    android::status_t status = android::NO_ERROR;
    std::chrono::milliseconds delay{0};
};

/** Construct it before the first EGL call: the loader identifies the process then. */
class GameProcess {
public:
    /** Without offerService() there is no service. */
    explicit GameProcess(const char* package) {
        setenv("EGL_PLATFORM", "surfaceless", 1);
        setenv("ORVEL_PACKAGE", package, 1);
    }

    GameProcess(const char* package, const char* configuration) : GameProcess(package) {
        if (configuration) {
            offerService({.text = configuration});
        }
    }

    ~GameProcess() {
        if (mListener >= 0) {
            shutdown(mListener, SHUT_RDWR);
            mService.join();
            close(mListener);
        }
    }

    void offerService(const Answer& answer) {
        mListener = android::desktop::listenAsService(getenv("ORVEL_ROOT"), "velmor.ravelo");
        ASSERT_GE(mListener, 0);
        mService = std::thread([this, answer] {
            android::desktop::serveClients(mListener,
                                           [answer](uint32_t, const android::Parcel&, android::Parcel* reply) {
                                               std::this_thread::sleep_for(answer.delay);
                                               reply->writeInt32(answer.exception);
                                               reply->writeString16(android::String16(answer.text.c_str()));
                                               return answer.status;
                                           });
        });
    }

    const TestRoot& root() const { return mRoot; }

    /** What the library logged so far. */
    std::string log() const {
        std::ifstream file(std::string(getenv("ORVEL_ROOT")) + "/orvel/log");
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    const TestRoot mRoot;
    int mListener = -1;
    std::thread mService;
};
