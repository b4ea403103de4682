// Shader texts that are edited where they lie.
#include "Fuzz.h"

#include "legacy/ShaderReplace.h"
#include "settings/orvel_modify_params.h"

#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::logNothing();
    android::mShaderReplaceValue = 1;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<char> text(data, data + size);
    text.push_back('\0');
    const size_t before = std::strlen(text.data());
    const char* strings[] = {text.data()};
    android::updateShaderCode(1, 1, strings);
    fuzz::demand(std::strlen(text.data()) <= before, "the text does not grow");
    fuzz::demand(std::strstr(text.data(), "mediump") == nullptr || before <= 4, "nothing is left to be replaced");

    FuzzedDataProvider input(data, size);
    const std::string from = input.ConsumeRandomLengthString(8);
    const std::string to = input.ConsumeRandomLengthString(from.size());
    std::string source = input.ConsumeRemainingBytesAsString();
    source.push_back('\0');
    if (std::strlen(to.c_str()) <= std::strlen(from.c_str())) { // else the caller owns room for more
        android::replaceShader(source.data(), from.c_str(), to.c_str());
    }
    return 0;
}
