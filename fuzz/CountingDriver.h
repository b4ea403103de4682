// A driver that draws nothing and tells which of its entries were called, and with what.
#pragma once

#include <EGL/egldefs.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

using GlTable = android::gl_hooks_t::gl_t;

/** One call that reached the driver. */
struct Arrival {
    size_t entry; // offset in GlTable
    uint64_t arguments;
};

/** Cleared by whoever looks. */
inline std::vector<Arrival>& arrivals() {
    static auto& all = *new std::vector<Arrival>;
    return all;
}

/** @return a number that stands for the arguments of a call */
template <typename... Args>
uint64_t digest(Args... args) {
    uint64_t sum = 1469598103934665603u;
    const auto add = [&](auto arg) {
        uint64_t bits = 0;
        static_assert(sizeof arg <= sizeof bits);
        __builtin_memcpy(&bits, &arg, sizeof arg);
        sum = (sum ^ bits) * 1099511628211u;
    };
    (add(args), ...);
    return sum;
}

/**
 * Fills both tables. Objects get one of a thousand names, every shader compiles, every program has the uniform "param",
 * and memory can be mapped. Contexts are the numbers 1 to 5, used again when destroyed; a sixth is refused. Sets of
 * numbers that the driver is asked for stay as they are.
 */
void connect(android::egl_connection_t& connection, android::gl_hooks_t& gles2);

} // namespace fuzz
