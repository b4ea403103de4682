// The generated lists as rows that can be walked and searched by name.
#pragma once

#include <EGL/egldefs.h>

#include <cstddef>
#include <span>

namespace android::rig {

using GlTable = gl_hooks_t::gl_t;
using AnyFunction = __eglMustCastToProperFunctionPointerType;

struct Entry {
    const char* name;
    const char* providers; // extensions that bring the entry, separated by blanks; "" for core
    size_t slot;           // offset in GlTable, or in egl_t and platform_impl_t, which begin alike
    bool isGl;

    bool isCore() const { return *providers == '\0'; }
    AnyFunction in(const GlTable& table) const { return load(&table); }
    AnyFunction in(const egl_t& table) const { return load(&table); }
    AnyFunction in(const platform_impl_t& table) const { return load(&table); }
    void set(GlTable* table, AnyFunction function) const { store(table, function); }
    void set(egl_t* table, AnyFunction function) const { store(table, function); }

private:
    AnyFunction load(const void* table) const;
    void store(void* table, AnyFunction function) const;
};

std::span<const Entry> glEntries();
std::span<const Entry> eglEntries();

/** @return the row of a GLES or EGL entry, or null for a name that is on no list */
const Entry* findEntry(const char* name);

template <typename R, typename... Params>
R doNothing(Params...) {
    return R();
}

/** What the driver lacks is null in the tables; a program that calls it all the same must survive. */
template <typename R, typename... Params>
auto orNothing(R (*entry)(Params...)) {
    return entry ? entry : doNothing<R, Params...>;
}

} // namespace android::rig
