#include "Entries.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace android::rig {

namespace {

constexpr Entry kGlEntries[] = {
#define GL_ENTRY(Result, name, params, args, providers) {#name, providers, offsetof(GlTable, name), true},
#include <entries/gl_entries.in>
#undef GL_ENTRY
};

constexpr Entry kEglEntries[] = {
#define EGL_ENTRY(Result, name, params, args, providers) {#name, providers, offsetof(egl_t, name), false},
#include <entries/egl_entries.in>
#undef EGL_ENTRY
};

#define EGL_ENTRY(Result, name, params, args, providers)                                                               \
    static_assert(offsetof(egl_t, name) == offsetof(platform_impl_t, name));
#include <entries/egl_entries.in>
#undef EGL_ENTRY

bool byName(const Entry* a, const Entry* b) { return std::strcmp(a->name, b->name) < 0; }

std::vector<const Entry*> sortedEntries() {
    std::vector<const Entry*> all;
    for (const Entry& entry : kGlEntries) {
        all.push_back(&entry);
    }
    for (const Entry& entry : kEglEntries) {
        all.push_back(&entry);
    }
    std::sort(all.begin(), all.end(), byName);
    return all;
}

} // namespace

AnyFunction Entry::load(const void* table) const {
    AnyFunction function = nullptr;
    std::memcpy(&function, static_cast<const char*>(table) + slot, sizeof function);
    return function;
}

void Entry::store(void* table, AnyFunction function) const {
    std::memcpy(static_cast<char*>(table) + slot, &function, sizeof function);
}

std::span<const Entry> glEntries() { return kGlEntries; }
std::span<const Entry> eglEntries() { return kEglEntries; }

const Entry* findEntry(const char* name) {
    // Never freed: a program may ask for entries while its own exit handlers run.
    static const auto* const sorted = new std::vector<const Entry*>(sortedEntries());
    const Entry wanted{name, "", 0, false};
    const auto found = std::lower_bound(sorted->begin(), sorted->end(), &wanted, byName);
    return found != sorted->end() && std::strcmp((*found)->name, name) == 0 ? *found : nullptr;
}

} // namespace android::rig
