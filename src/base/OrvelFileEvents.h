// News of watched files.
#pragma once

#include <cstddef>

namespace android::orvel {

constexpr size_t kFileEventBytes = 2720; // of a buffer: ten inotify events with the longest of names

} // namespace android::orvel
