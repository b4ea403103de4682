// Lets a test play the Java runtime.
#pragma once

#include <jni.h>

namespace android::desktop {

/** What AndroidRuntime::getJNIEnv() answers from now on, on every thread; null (the start) means no runtime. */
void setJNIEnv(JNIEnv* env);

} // namespace android::desktop
