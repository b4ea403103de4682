// The processor configuration: which modules a game's processor carries, and with what parameters.
#pragma once

#include <json/forwards.h>

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace android::orvel::app {

namespace module {
class OrvelProcessorModuleDataBase;
}

/**
 * The part that all games share. Filled once at start-up; afterwards modules are only ever taken out. The framework is
 * active in a process only while an id is left.
 */
class OrvelProcessorDataBase {
public:
    OrvelProcessorDataBase() = default;
    OrvelProcessorDataBase(const OrvelProcessorDataBase&) = delete;
    OrvelProcessorDataBase& operator=(const OrvelProcessorDataBase&) = delete;

    virtual ~OrvelProcessorDataBase();
    /** Reads the game's own parameters; the base has none. */
    virtual void ParsePayloadData(const std::string& payload);
    /** Fills extensionFunctions for the modules that are left; the base needs no function. */
    virtual void ColloctModuleExtensionFunctions();
    /** @return names of the GL extension functions that a module needs */
    virtual const std::vector<std::string>& GetModuleExtensionFunctions(uint32_t moduleId);
    /**
     * Drops every module that needs a function for which isMissing answers true.
     * @throw std::bad_function_call when isMissing is empty and some function is needed
     */
    virtual void CheckExtensionFunctions(std::function<bool(const std::string&)> isMissing);

    /** Fills the configuration from the service's keys. */
    void InitProcessorConfigData(const Json::Value& json);
    /** Takes a module out, with its parameters and its claims on extension functions. */
    void EraseModuleId(uint32_t id);
    bool HasAnyModuleId() const;
    bool HasModuleId(uint32_t id) const;
    /** @return the module's parameters, still owned here, or null */
    module::OrvelProcessorModuleDataBase* GetProcessorModuleData(uint32_t id);
    /** Files the ids of the modules that are left under the names of the functions they need. */
    void ColloctExtensionFunctions(const std::unordered_map<uint32_t, std::vector<std::string>>& perModule);
    /** Drops every module that needs this function: the application has asked for it and now uses it itself. */
    void RemoveExtensionFunction(const std::string& name);

    std::vector<uint32_t> moduleIds;                                                // one bit each, ascending
    std::unordered_map<uint32_t, module::OrvelProcessorModuleDataBase*> moduleData; // owned
    std::unordered_map<std::string, std::vector<uint32_t>> extensionFunctions;      // function name to module ids
    int32_t mainContextMode = 0; // which contexts are served: 0 every one, 1 by thread name, 2 by pipeline
    uint64_t baseInfo = 0;       // the mask that moduleIds come from
    std::string mainThreadName;  // regular expression
};

} // namespace android::orvel::app
