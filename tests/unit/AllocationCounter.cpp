#include "AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <dlfcn.h>
#include <new>
#include <pthread.h>

namespace {
std::atomic<size_t> sAllocations{0};
std::atomic<size_t> sLocks{0};
} // namespace

size_t allocationsSoFar() { return sAllocations.load(); }
size_t locksSoFar() { return sLocks.load(); }

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    using Lock = int (*)(pthread_mutex_t*);
    static const auto lock = reinterpret_cast<Lock>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    ++sLocks;
    return lock(mutex);
}

void* operator new(size_t size) {
    ++sAllocations;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void* operator new(size_t size, std::align_val_t alignment) {
    ++sAllocations;
    const auto step = static_cast<size_t>(alignment);
    if (void* memory = std::aligned_alloc(step, (size + step - 1) / step * step)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, size_t, std::align_val_t) noexcept { std::free(memory); }
