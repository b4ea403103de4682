// Every GL entry of the library's table, for tests that call each one that is hooked.
#pragma once

#include "RecordingDriver.h"
#include "next/OrvelNext.h"

#include <type_traits>
#include <utility>

namespace every_entry {

/** Another number for each argument; addresses lead to zeros. */
template <typename T>
T numbered(size_t number) {
    static char zeros[64];
    if constexpr (!std::is_pointer_v<T>) {
        return static_cast<T>(number);
    } else if constexpr (std::is_function_v<std::remove_pointer_t<T>>) {
        return nullptr;
    } else {
        return reinterpret_cast<T>(zeros);
    }
}

template <typename R, typename... Args, size_t... Numbers>
std::string callNumbered(const char* name, R(GL_APIENTRY* entry)(Args...), std::index_sequence<Numbers...>) {
    entry(numbered<Args>(Numbers + 1)...);
    return call(name, numbered<Args>(Numbers + 1)...);
}

template <typename R, typename... Args>
std::string callNumbered(const char* name, R(GL_APIENTRY* entry)(Args...)) {
    return callNumbered(name, entry, std::index_sequence_for<Args...>());
}

} // namespace every_entry

struct Entry {
    const char* name;
    bool (*isHooked)(const android::orvel::next::GlTable& game);
    /** Calls it with arguments that differ. @return what the driver should see */
    std::string (*call)(const android::orvel::next::GlTable& game);
};

// A table, not a row of expectations: compilers take minutes for a function of a thousand of those.
constexpr Entry kEntries[] = {
#define GL_ENTRY(Result, name, params, args, providers)                                                                \
    {#name, [](const android::orvel::next::GlTable& game) { return game.name != android::orvel::next::gl.name; },      \
     [](const android::orvel::next::GlTable& game) { return every_entry::callNumbered(#name, game.name); }},
#include <entries/gl_entries.in>
#undef GL_ENTRY
};
