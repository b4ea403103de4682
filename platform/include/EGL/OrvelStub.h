// What the EGL loader expects of the object that the library's createInstance() returns.
#pragma once

#include <EGL/egldefs.h>

namespace android {

/** The loader calls the library only through this table; the order of the operations is the contract. */
class OrvelStub {
public:
    virtual ~OrvelStub() = default;
    virtual gl_hooks_t* getGLThreadSpecific(const gl_hooks_t* hooks) = 0;
    virtual void eglCreateContext(int version) = 0; // of GLES: 1, 2 or 3
    virtual void eglDestroyContext() = 0;
    virtual bool isEnabled() = 0;
    virtual void eglSwapBuffersEnd() = 0;
    virtual void earlyInitOrvel(egl_connection_t* cnx) = 0;
    virtual void lateInitOrvel(egl_connection_t* cnx) = 0;
};

} // namespace android
