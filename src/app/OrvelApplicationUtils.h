// The factory: what depends on the application type is made here, and released here. The rest of the framework names no
// game.
#pragma once

#include <EGL/egldefs.h>
#include <json/forwards.h>

#include <cstdint>

namespace android::orvel::app {

class OrvelProcessorBase;
class OrvelProcessorDataBase;
namespace module {
class OrvelModuleBase;
class OrvelProcessorModuleDataBase;
} // namespace module

/**
 * @param appType an OrvelApplicationType; 0 means the type of this process
 * @return whether processes of that type are served by the framework, not by the legacy hooks
 */
bool UsingRenderController(uint32_t appType);

/** @return whether this process has the shared processor, which serves any application */
bool IsSharedProcessor();

/** @return an empty configuration for this process, owned by the caller; null while the process has no type */
OrvelProcessorDataBase* CreateProcessorData();
/** @param data null is ignored */
void ReleaseProcessorData(OrvelProcessorDataBase* data);

// A module-type id is a single bit, and means a module only together with the type of this process. What creates its
// classes is registered at start-up, before any hook is live: for the type first, then for each configured id.

/** Registers what creates this process's processors. */
void InitProcessorCreateInfo();
/** Registers what creates a module and its parameters; an id that the processor does not know adds nothing. */
void InitModuleCreateInfo(uint32_t id);
void InitPUBGModuleCreateInfo(uint32_t id);
void InitSGameModuleCreateInfo(uint32_t id);
void InitSharedModuleCreateInfo(uint32_t id);
/** Stand in for types without a processor. */
void DummyModuleCreate(uint32_t id);
void DummyCollect(egl_connection_t* cnx);

/**
 * @return a processor of this process's type, owned by the caller; null for a type without one
 * @throw std::bad_function_call before InitProcessorCreateInfo()
 */
OrvelProcessorBase* CreateGLProcessor();
/** @param processor null is ignored */
void ReleaseGLProcessor(OrvelProcessorBase* processor);
/** Writes the hooks that the processor itself needs. */
void RegisterProcessorGlobalGLHooks(egl_connection_t* cnx);

/** @return the module's parameters, owned by the caller; null for an unknown id */
module::OrvelProcessorModuleDataBase* CreateProcessorModuleData(uint32_t id, const Json::Value& json);
/** @param data null is ignored */
void ReleaseProcessorModuleData(module::OrvelProcessorModuleDataBase* data);

/** Writes the hooks that modules of this type need. */
void RegisterProcessorModuleGlobalGLHooks(uint32_t id, egl_connection_t* cnx);
/** @return a module for that processor, owned by the caller; null for an unknown id */
module::OrvelModuleBase* CreateProcessorGLModule(uint32_t id, OrvelProcessorBase* processor);
/** @param glModule null is ignored */
void ReleaseProcessorGLModule(module::OrvelModuleBase* glModule);

} // namespace android::orvel::app
