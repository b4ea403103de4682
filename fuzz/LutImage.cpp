// The image of a look-up table.
#include "Fuzz.h"

#include "base/OrvelPaths.h"
#include "next/effects/PngImage.h"

#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::root();
    fuzz::logNothing();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace android::orvel::next;
    fuzz::root().write("/lut.png", {reinterpret_cast<const char*>(data), size});
    OrvelLutEffectInstance::PNGResource file(android::orvel::systemPath("/lut.png"));
    PngImage image(file);
    if (image.ReadHeader()) {
        fuzz::demand(image.Width() >= 1 && image.Width() <= 4096 && image.Height() >= 1 && image.Height() <= 4096,
                     "the size is sane");
        const uint32_t bytes = (image.InternalFormat() == GL_RGBA8 ? 4u : 3u) * static_cast<uint32_t>(image.Width()) *
                               static_cast<uint32_t>(image.Height());
        fuzz::demand(image.Bytes() == bytes, "as many bytes as pixels need");
        std::vector<uint8_t> memory(image.Bytes());
        image.ReadRows(memory.data());
    }
    return 0;
}
