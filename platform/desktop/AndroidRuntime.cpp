#include "DesktopRuntime.h"

#include <android_runtime/AndroidRuntime.h>

#include <atomic>

namespace android {

namespace {
std::atomic<JNIEnv*> sEnv{nullptr};
}

JNIEnv* AndroidRuntime::getJNIEnv() { return sEnv.load(); }

void desktop::setJNIEnv(JNIEnv* env) { sEnv.store(env); }

} // namespace android
