// Uploads from a game's context meet the game's pixel-store state.
#pragma once

#include <EGL/egldefs.h>

namespace android::orvel::next {

/** While one lives, rows of an upload lie one behind the other in our memory; afterwards the game's state is back. */
class OrvelPixelStoreScope {
public:
    enum Source { FROM_MEMORY, FROM_BUFFER };

    /** @param source FROM_MEMORY also unbinds the game's unpack buffer, with which an address would be an offset */
    explicit OrvelPixelStoreScope(Source source);
    ~OrvelPixelStoreScope();
    OrvelPixelStoreScope(const OrvelPixelStoreScope&) = delete;
    OrvelPixelStoreScope& operator=(const OrvelPixelStoreScope&) = delete;

private:
    static constexpr int kParameters = 4;

    GLint mGameValues[kParameters];
    GLint mBuffer = 0; // 0: nothing to bind again
};

} // namespace android::orvel::next
