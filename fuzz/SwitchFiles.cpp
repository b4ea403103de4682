// The small watched files: "dr" with a size, "sr" and "dfi" with a number.
#include "Fuzz.h"

#include "legacy/DrConfigFile.h"
#include "legacy/SwitchFile.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::root();
    fuzz::logNothing();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace android::orvel;
    fuzz::root().write("/data/system/mcd/any", {reinterpret_cast<const char*>(data), size});
    static DrConfigFile resolution("/data/system/mcd/any");
    if (const auto line = resolution.readLine()) {
        if (const auto request = DrConfigFile::parse(*line)) {
            fuzz::demand(request->package.data() >= line->data() &&
                             request->package.data() + request->package.size() <= line->data() + line->size(),
                         "the package lies in the line");
        }
    }
    static const SwitchFile number("/data/system/mcd/any", "fuzzed");
    number.read("com.example.game");
    return 0;
}
