// A module: one feature that a game's processor carries, such as a filter or variable-rate shading.
#pragma once

#include <EGL/egldefs.h>

#include <cstdint>

namespace android::orvel::app {
class OrvelProcessorBase;
}

namespace android::orvel::app::module {

/**
 * Belongs to one processor and is used on its thread only. A subclass holds a node for each hook that it installs,
 * makes no GL call in its destructor (the objects go with the context), and never calls the context manager, whose
 * lock is held while modules are made and released.
 *
 * The order of the virtual operations is fixed: others count on the slots of the table.
 */
class OrvelModuleBase {
public:
    /** @param processor the owner */
    explicit OrvelModuleBase(OrvelProcessorBase* processor) : mProcessor(processor) {}
    OrvelModuleBase(const OrvelModuleBase&) = delete;
    OrvelModuleBase& operator=(const OrvelModuleBase&) = delete;

    virtual ~OrvelModuleBase() = default;
    /** @return the module's type: one bit, with a meaning of its own for each processor */
    virtual uint32_t GetModuleId() const = 0;
    /** Installs the module's nodes in the processor's chains. */
    virtual void RegisterModuleFunctors() = 0;
    /** Takes them out again. */
    virtual void UnregisterModuleFunctors() = 0;
    /** Before the driver's swap. */
    virtual void FrameEnd() {}
    /** After the driver's swap. */
    virtual void PostFrameEnd() {}

    /** Lets every configured module type write the global hooks of the entries that it needs. */
    static void RegisterModuleGlobalGLHooks(egl_connection_t* cnx);

    bool valid = true; // cleared by a subclass that could not be set up: it is then released, not registered

protected:
    OrvelProcessorBase* const mProcessor; // not owned
};

} // namespace android::orvel::app::module
