// A game processor: the object of one render context that receives the GL calls of one game.
#pragma once

#include <EGL/egldefs.h>

#include <cstdint>
#include <vector>

namespace android::orvel::next {
class OrvelVisualEffectManager;
}

namespace android::orvel::app {

namespace module {
class OrvelModuleBase;
}

/**
 * Carries modules and drives them frame by frame. Used only on the thread on which its context is current. A subclass
 * has a chain (GlChain) and a public method GlXxxHooked for each GL entry that it handles, and never calls the context
 * manager from its constructor, OnBegin() or OnEnd(): the manager's lock is held.
 *
 * The order of the virtual operations is fixed: others count on the slots of the table.
 */
class OrvelProcessorBase {
public:
    OrvelProcessorBase() = default;
    OrvelProcessorBase(const OrvelProcessorBase&) = delete;
    OrvelProcessorBase& operator=(const OrvelProcessorBase&) = delete;

    virtual ~OrvelProcessorBase() = default;
    virtual uint32_t GetProcessorId() = 0;
    /** Makes and registers the configured modules, then the effect manager if one of them draws effects. */
    virtual void OnBegin();
    /** Releases all modules. The effect manager stays: the subclass deletes it. */
    virtual void OnEnd();
    /** Before the driver's swap: all modules, then the effect manager. What one of them throws ends in the log. */
    virtual void FrameEnd();
    /** After the driver's swap. */
    virtual void PostFrameEnd();
    /** @return whether a module needs the effect manager; asked once, when the modules are there */
    virtual bool HasEffectModule() { return false; }
    /** @return whether the effect manager may start to load its resources; asked every frame until it may */
    virtual bool EnableEffectManagerLoadResource() { return false; }

    /** Takes the module over and installs its hooks. Null and a module that is registered already are ignored. */
    void RegisterModule(module::OrvelModuleBase* added);
    /** Takes a registered module's hooks out and releases it. */
    void UnRegisterModule(module::OrvelModuleBase* removed);
    /** Does that with every module, the last one first. */
    void UnRegisterModules();
    /** @return the first registered module of that type, or null */
    module::OrvelModuleBase* GetGLModule(uint32_t moduleId) const;
    /** @return how many frames of this context were completed */
    uint64_t GetCurrentFrameId() const { return mFrameId; }
    next::OrvelVisualEffectManager* GetEffectManager() const { return mEffectManager; }
    /** For a subclass that recognises the game's main context; see FrameEnd(). */
    void UpdateMainRenderContextStatus(bool isMain);

    /** Writes the GL hooks of all configured modules, those of the processor, and the two swap hooks. Saves nothing. */
    static void RegisterGlobalHooks(egl_connection_t* cnx);

protected:
    next::OrvelVisualEffectManager* mEffectManager = nullptr; // the subclass's destructor deletes it

private:
    bool IsRegistered(const module::OrvelModuleBase* module) const;

    uint64_t mFrameId = 0;
    std::vector<module::OrvelModuleBase*> mModules; // owned, in the order of registration
    bool mIsMainRenderContext = false;
};

} // namespace android::orvel::app
