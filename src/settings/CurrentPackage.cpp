#include "settings/CurrentPackage.h"

#include "base/OrvelLog.h"

#include <android_runtime/AndroidRuntime.h>
#include <jni.h>

namespace android::orvel {

namespace {

jclass sActivityThread = nullptr; // global reference
jmethodID sCurrentPackageName = nullptr;
auto& sPackageName = *new String8;

/** A failed JNI call leaves an exception pending, and the game's next JNI call would abort on it. */
bool failed(JNIEnv* env, const char* message) {
    env->ExceptionClear();
    ORVEL_LOGE("%s", message);
    return false;
}

} // namespace

bool initActivityThreadClass() {
    JNIEnv* env = AndroidRuntime::getJNIEnv();
    if (!env) {
        return false;
    }
    const jclass found = env->FindClass("android/app/ActivityThread");
    if (!found) {
        return failed(env, "find ActivityThread class failed");
    }
    sActivityThread = static_cast<jclass>(env->NewGlobalRef(found));
    if (!sActivityThread) {
        return failed(env, "new ActivityThread ref failed");
    }
    sCurrentPackageName = env->GetStaticMethodID(sActivityThread, "currentPackageName", "()Ljava/lang/String;");
    if (!sCurrentPackageName) {
        return failed(env, "find currentPackageName method failed");
    }
    return true;
}

String8 getCurrentPackageName() {
    JNIEnv* env = sPackageName.isEmpty() ? AndroidRuntime::getJNIEnv() : nullptr;
    if (!env || !sCurrentPackageName) {
        return sPackageName;
    }
    // Neither the local reference nor the characters are given back: this runs at most a few times per process.
    const auto name = static_cast<jstring>(env->CallStaticObjectMethod(sActivityThread, sCurrentPackageName));
    const char* characters = name ? env->GetStringUTFChars(name, nullptr) : nullptr;
    if (characters) {
        sPackageName = characters;
    } else {
        env->ExceptionClear(); // see failed()
    }
    return sPackageName;
}

} // namespace android::orvel
