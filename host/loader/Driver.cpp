#include "Driver.h"

#include "Extensions.h"
#include "LogFile.h"
#include "MultisampledTextures.h"
#include "ProbeContext.h"
#include "ShadingRate.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <unordered_set>

namespace android::rig {

namespace {

// The driver's own entries, for the filtered eglGetProcAddress.
egl_t sEgl{};
GlTable sGl{};
std::atomic<bool> sUnknownEntriesAllowed{false}; // set by the program's threads, never cleared

void* openSystemLibrary(const char* variable, const char* fallback) {
    const char* path = std::getenv(variable);
    if (!path || !*path) {
        path = fallback;
    }
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        RIG_LOGE("cannot open the system's library: %s", dlerror());
    }
    return library;
}

AnyFunction resolve(void* library, const char* name) {
    if (void* symbol = dlsym(library, name)) {
        return reinterpret_cast<AnyFunction>(symbol);
    }
    return sEgl.eglGetProcAddress ? sEgl.eglGetProcAddress(name) : nullptr;
}

std::unordered_set<std::string> words(const char* text) {
    std::unordered_set<std::string> result;
    while (*text) {
        const size_t length = std::strcspn(text, " ");
        result.emplace(text, length);
        text += length + (text[length] == ' ');
    }
    return result;
}

bool isProvided(const Entry& entry, const std::unordered_set<std::string>& extensions) {
    for (const std::string& provider : words(entry.providers)) {
        if (extensions.count(provider)) {
            return true;
        }
    }
    return false;
}

// Stands in the table for the driver's, which answers any name that begins with "gl".
AnyFunction EGLAPIENTRY getProcAddress(const char* name) {
    if (!name) {
        return nullptr;
    }
    const Entry* entry = findEntry(name);
    const AnyFunction known = !entry ? nullptr : entry->isGl ? entry->in(sGl) : entry->in(sEgl);
    if (known) {
        return known;
    }
    const bool isGl = std::strncmp(name, "gl", 2) == 0;
    return isGl && !sUnknownEntriesAllowed.load(std::memory_order_relaxed) ? nullptr : sEgl.eglGetProcAddress(name);
}

} // namespace

bool openEgl(egl_connection_t* cnx) {
    void* eglLibrary = openSystemLibrary("ORVEL_SYSTEM_EGL", ORVEL_SYSTEM_EGL);
    if (!eglLibrary) {
        return false;
    }
    sEgl.eglGetProcAddress = reinterpret_cast<decltype(sEgl.eglGetProcAddress)>(dlsym(eglLibrary, "eglGetProcAddress"));
    if (!sEgl.eglGetProcAddress) {
        RIG_LOGE("the system's EGL library has no eglGetProcAddress");
        return false;
    }
    // The system answers an egl... name only if a driver implements it, listed or not (some are listed by displays
    // with windows alone, some under another extension's name), so these are taken as they come.
    for (const Entry& entry : eglEntries()) {
        entry.set(&sEgl, resolve(eglLibrary, entry.name));
    }
    cnx->egl = sEgl;
    cnx->egl.eglGetProcAddress = getProcAddress;
    return true;
}

bool openGles(egl_connection_t* cnx, GlTable* gl) {
    void* glesLibrary = openSystemLibrary("ORVEL_SYSTEM_GLES", ORVEL_SYSTEM_GLES);
    if (!glesLibrary) {
        return false;
    }
    for (const Entry& entry : glEntries()) {
        if (entry.isCore()) {
            entry.set(&sGl, resolve(glesLibrary, entry.name));
        }
    }
    *gl = sGl; // asking for extensions may call back
    const auto extensions = words(editExtensions(askForExtensions(cnx, sGl)).c_str());
    for (const Entry& entry : glEntries()) {
        if (!entry.isCore() && isProvided(entry, extensions)) {
            entry.set(&sGl, resolve(glesLibrary, entry.name));
        }
    }
    fillShadingRateEntries(&sGl);
    fillMultisampledEntries(&sGl);
    *gl = sGl;
    return true;
}

void allowUnknownEntries() { sUnknownEntriesAllowed.store(true, std::memory_order_relaxed); }

} // namespace android::rig
