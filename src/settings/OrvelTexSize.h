// Sizes of the tuning service's configuration and the lists they come in.
#pragma once

#include <cstdint>

namespace com::velmor::ravelo {

/** Texels. */
struct TEX_SIZE {
    int32_t width = 0;
    int32_t height = 0;

    bool operator==(const TEX_SIZE&) const = default;
};

/** The list that a size was given in: "post_process_low" and so on. */
enum TYPE_ADAPT_SET {
    TEX_SIZE_POST_PROCESS_LOW = 0,
    TEX_SIZE_POST_PROCESS_HIGH = 1,
    TEX_SIZE_MAX_RESOLUTION = 2,
    TEX_SIZE_MAX_RESOLUTION_80P = 3,
};

} // namespace com::velmor::ravelo
