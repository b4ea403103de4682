// Processor configuration of games with shading-rate modules.
#pragma once

#include "app/OrvelProcessorDataBase.h"

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace android::orvel::app {

/** Knows which extension functions each module needs; a shading-rate module stays while either extension is there. */
class OrvelShadingRateData : public OrvelProcessorDataBase {
public:
    using FunctionTable = std::unordered_map<uint32_t, std::vector<std::string>>; // by module id

    /** What the small-window modules need: they only set a rate. */
    static const std::vector<std::string>& SharedVRSFunctions();

    void ColloctModuleExtensionFunctions() override;
    const std::vector<std::string>& GetModuleExtensionFunctions(uint32_t moduleId) override;
    void CheckExtensionFunctions(std::function<bool(const std::string&)> isMissing) override;

protected:
    /** @param functions outlives this object */
    explicit OrvelShadingRateData(const FunctionTable& functions) : mFunctions(functions) {}

private:
    const FunctionTable& mFunctions;
};

} // namespace android::orvel::app
