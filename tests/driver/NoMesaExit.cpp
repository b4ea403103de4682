// Mesa frees its contexts and its compiler when the process ends, and does not stand a thread that draws then. A
// device's driver stays. So that a test can tell what the library does at that moment, Mesa is not told of it.
#include <cstring>
#include <dlfcn.h>
#include <initializer_list>

static bool isMesa(void* library) {
    Dl_info info{};
    if (library && dladdr(library, &info) && info.dli_fname) {
        for (const char* name : {"/dri/", "libEGL_mesa", "libglapi", "libLLVM"}) {
            if (std::strstr(info.dli_fname, name)) {
                return true;
            }
        }
    }
    return false;
}

extern "C" __attribute__((visibility("default"), used)) int __cxa_atexit(void (*function)(void*), void* argument,
                                                                         void* library) {
    static const auto next = reinterpret_cast<decltype(&__cxa_atexit)>(dlsym(RTLD_NEXT, "__cxa_atexit"));
    static thread_local void* latest = nullptr; // a compiler registers thousands
    static thread_local bool isLatestMesa = false;
    if (library != latest) {
        latest = library;
        isLatestMesa = isMesa(library);
    }
    return isLatestMesa ? 0 : next(function, argument, library);
}
