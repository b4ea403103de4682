// The Java runtime of an application process.
#pragma once

#include <jni.h>

namespace android {

class AndroidRuntime {
public:
    /** @return the calling thread's JNI environment, or null when the thread is not attached to a runtime */
    static JNIEnv* getJNIEnv();
};

} // namespace android
