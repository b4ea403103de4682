// The tuning service's answer, for every kind of application.
#include "Fuzz.h"

#include "app/OrvelProcessorDataBase.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

using namespace android;
using namespace android::orvel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::root();
    fuzz::logNothing();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    auto& settings = OrvelSettings::getInstance();
    settings.mApplicationType = static_cast<OrvelApplicationType>(input.ConsumeIntegralInRange<int>(-1, 10));
    com::velmor::ravelo::OrvelPrefs prefs;
    prefs.readFromRavelo(input.ConsumeRemainingBytesAsString());
    if (prefs.mProcessorData) {
        prefs.mProcessorData->CheckExtensionFunctions([](const std::string& name) { return name.size() % 2 == 0; });
        prefs.mProcessorData->RemoveExtensionFunction("glShadingRateEXT");
    }
    return 0;
}
