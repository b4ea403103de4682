// What the sanitizers' runtimes must know to run in this house. They ask the program itself; others never call these.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

#define ORVEL_ASKED_BY_RUNTIME extern "C" __attribute__((visibility("default"), used))

ORVEL_ASKED_BY_RUNTIME const char* __ubsan_default_options() { return "print_stacktrace=1"; }

// llvmpipe's threads are not instrumented.
ORVEL_ASKED_BY_RUNTIME const char* __tsan_default_options() { return "ignore_noninstrumented_modules=1"; }

// The packaged libutils counts references with fences that the sanitizer does not see.
ORVEL_ASKED_BY_RUNTIME const char* __tsan_default_suppressions() {
    return "race:android::RefBase::decStrong\n"
           "race:android::RefBase::weakref_type::decWeak\n";
}
