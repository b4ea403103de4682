// The processor configuration: which modules a game's processor carries, and with what parameters.
#pragma once

#include "base/Relaxed.h"

#include <json/forwards.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace android::orvel::app {

namespace module {
class OrvelProcessorModuleDataBase;
}

/**
 * The part that all games share. Filled once at start-up; afterwards modules are only ever taken out, on whichever
 * thread the application asks for a function that a module needs. The framework is active in a process only while an id
 * is left.
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
     * Drops every module that needs a function for which isMissing answers true. Each function is asked for once, in
     * the order in which the modules list them, and all of them are: asking resolves the function.
     * @throw std::bad_function_call when isMissing is empty and some function is needed
     */
    virtual void CheckExtensionFunctions(std::function<bool(const std::string&)> isMissing);

    /**
     * Fills the configuration from the service's keys and, if a module is left, starts the game-information monitor.
     * @param json the object "configs", all values of which are read as strings; anything else has no keys
     * @throw std::invalid_argument, std::out_of_range when the mask or the mode is no number; the configuration is then
     *        half filled
     */
    void InitProcessorConfigData(const Json::Value& json);
    /** Adds the modules of bits 0 to 29 that are not there yet, and lets the factory learn how to create them. */
    void InitModuleIdArray(uint32_t mask);
    /** @return whether the module has usable parameters, made from json unless it had them before */
    bool InitProcessorModuleData(uint32_t id, const Json::Value& json);
    /** Takes a module out, with its parameters and its claims on extension functions. */
    void EraseModuleId(uint32_t id);
    bool HasAnyModuleId() const;
    bool HasModuleId(uint32_t id) const;
    /** @return the ids that are left at this moment, ascending */
    std::vector<uint32_t> GetModuleIds() const;
    /**
     * @return the module's parameters, still owned here, or null. Another thread may take the module out at any time,
     *         and its parameters with it: a module that needs extension functions uses the next one.
     */
    module::OrvelProcessorModuleDataBase* GetProcessorModuleData(uint32_t id);
    /**
     * Shows the module's parameters to visit, which copies what it needs and does not call back.
     * @return false when there are none
     */
    bool WithProcessorModuleData(uint32_t id,
                                 const std::function<void(const module::OrvelProcessorModuleDataBase&)>& visit) const;
    /** Files the ids of the modules that are left under the names of the functions they need. */
    void ColloctExtensionFunctions(const std::unordered_map<uint32_t, std::vector<std::string>>& perModule);
    /** Drops every module that needs this function: the application has asked for it and now uses it itself. */
    void RemoveExtensionFunction(const std::string& name);

    enum MainContextMode : int32_t {
        MAIN_CONTEXT_EVERY = 0,
        MAIN_CONTEXT_BY_THREAD_NAME = 1,
        MAIN_CONTEXT_BY_PIPELINE = 2
    };

    // Written once, at start-up.
    int32_t mainContextMode = MAIN_CONTEXT_EVERY; // which contexts are served; any other number: none
    uint64_t baseInfo = 0;      // the mask that moduleIds come from, bits that name no module included
    std::string mainThreadName; // regular expression

protected:
    static constexpr char kPayloadDataKey[] = "xrender_PayloadData";

    // Under mMutex.
    std::vector<uint32_t> moduleIds;                                                // one bit each, ascending
    std::unordered_map<uint32_t, module::OrvelProcessorModuleDataBase*> moduleData; // owned
    std::unordered_map<std::string, std::vector<uint32_t>> extensionFunctions;      // function name to module ids

private:
    void InitMainContext(const std::string& text);
    void AppendModuleId(uint32_t id);
    void EraseLocked(uint32_t id);

    // Also held while GetModuleExtensionFunctions(), visits and parameters' destructors run: they must not call back.
    mutable std::mutex mMutex;
    std::vector<std::string> mFunctionOrder; // keys of extensionFunctions as they came; under mMutex
    Relaxed<bool> mHasAnyModuleId{false};    // moduleIds is not empty; written under mMutex, read by make-current
};

} // namespace android::orvel::app
