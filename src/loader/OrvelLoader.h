// The library's face to the EGL loader: what it exports, and the object through which the loader drives it.
#pragma once

#include <EGL/OrvelStub.h>

extern "C" {

/**
 * Prepares the process: key, identification, the tuning service's answer, per-game settings. Every call repeats that,
 * so do not call it while the game draws: hooks read these without a lock.
 * @return the library's only OrvelStub
 */
void* createInstance();

/** Does nothing: the object is static and the key stays. */
void destroyInstance();
}

namespace android {

class OrvelStubImpl final : public OrvelStub {
public:
    ~OrvelStubImpl() override = default;
    gl_hooks_t* getGLThreadSpecific(const gl_hooks_t* hooks) override;
    void eglCreateContext(int version) override;
    void eglDestroyContext() override;
    bool isEnabled() override;
    void eglSwapBuffersEnd() override;
    void earlyInitOrvel(egl_connection_t* cnx) override;
    void lateInitOrvel(egl_connection_t* cnx) override;

private:
    /** Once per process: installs the hooks of the layer that serves it. The flag is accepted and ignored. */
    void initOrvel(egl_connection_t* cnx, bool);
};

namespace orvel {

/**
 * Tells whether the tuning service answered with a configuration for this process and the driver has a GLES 2 table.
 * Any thread; takes no lock.
 */
bool isOrvelEnabled();

void hookEglCreateContext(int version);
void hookEglDestroyContext();

/** @return a copy of the calling thread's table with the legacy GL hooks in it; see getOrvelHooks */
gl_hooks_t* getGLHooks();

} // namespace orvel

} // namespace android
