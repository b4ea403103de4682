// Parameters of one module.
#pragma once

#include <json/forwards.h>

namespace android::orvel::app::module {

class OrvelProcessorModuleDataBase {
public:
    /** @param json the service's configuration, from which subclasses take what they need */
    explicit OrvelProcessorModuleDataBase(const Json::Value& /*json*/) {}
    virtual ~OrvelProcessorModuleDataBase() = default;

    bool valid = true; // cleared by a subclass whose parameters are unusable: its module is then left out
};

} // namespace android::orvel::app::module
