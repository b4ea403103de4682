// A Java runtime that knows one static method.
#pragma once

#include "DesktopRuntime.h"

#include <string>

struct FakeJni {
    /** The step that fails, leaving an exception pending. */
    enum Step { NONE, FIND_CLASS, GLOBAL_REF, FIND_METHOD, CALL };

    explicit FakeJni(const char* answer, Step failing = NONE) : package(answer), failingStep(failing) {
        sThis = this;
        table.FindClass = [](JNIEnv*, const char* name) {
            return sThis->result<jclass>(FIND_CLASS, std::string(name) == "android/app/ActivityThread");
        };
        table.NewGlobalRef = [](JNIEnv*, jobject) { return sThis->result<jobject>(GLOBAL_REF, true); };
        table.GetStaticMethodID = [](JNIEnv*, jclass, const char* name, const char* signature) {
            const bool known = std::string(name) + signature == "currentPackageName()Ljava/lang/String;";
            return sThis->result<jmethodID>(FIND_METHOD, known);
        };
        table.CallStaticObjectMethodV = [](JNIEnv*, jclass, jmethodID, va_list) {
            ++sThis->calls;
            return sThis->result<jobject>(CALL, true);
        };
        table.GetStringUTFChars = [](JNIEnv*, jstring, jboolean*) { return sThis->package.c_str(); };
        table.ExceptionClear = [](JNIEnv*) { sThis->exceptionPending = false; };
        env.functions = &table;
        android::desktop::setJNIEnv(&env);
    }
    ~FakeJni() { android::desktop::setJNIEnv(nullptr); }

    std::string package;
    Step failingStep;
    int calls = 0; // of the method
    bool exceptionPending = false;

private:
    template <typename T>
    T result(Step step, bool known) {
        if (known && step != failingStep) {
            return reinterpret_cast<T>(this); // any reference will do
        }
        exceptionPending = true;
        return nullptr;
    }

    inline static FakeJni* sThis = nullptr;
    JNINativeInterface table{};
    JNIEnv env{};
};
