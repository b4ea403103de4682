// What the framework keeps for one EGL context: its game processor. And where a hook finds it.
#pragma once

#include <cstddef>
#include <memory>

namespace android::orvel {

namespace app {
class OrvelProcessorBase;
}

/** Owned by the context manager. */
class OrvelRenderContext {
public:
    /**
     * @param eglContext the context that this one belongs to; null is logged
     * @return the render context with its processor begun, or null for a null context. That the factory makes no
     *         processor is no failure: such a context's calls go to the driver.
     */
    static std::unique_ptr<OrvelRenderContext> Create(void* eglContext);

    explicit OrvelRenderContext(void* eglContext) : mContext(eglContext) {}
    /** Ends the processor and releases it. */
    ~OrvelRenderContext();
    OrvelRenderContext(const OrvelRenderContext&) = delete;
    OrvelRenderContext& operator=(const OrvelRenderContext&) = delete;

    /** @return false, with a log line, when the context is null; else true with the processor begun */
    bool Init();
    /** Makes the processor and begins it, whatever the context is. */
    void InitApplicationProcessor();

    void* const mContext;                          // the EGLContext
    app::OrvelProcessorBase* mProcessor = nullptr; // owned; null when the factory made none
    size_t mThreads = 0;                           // whose slot names this; changed under the manager's lock only
};

#pragma GCC visibility push(hidden) // for the compiler: no detour through the global offset table on the draw path
/** The render context that is current on this thread, or null. The manager alone writes it. */
extern constinit thread_local OrvelRenderContext* gContextTls;
#pragma GCC visibility pop

struct OrvelRenderContextTLS {
    /** @return the processor of the slot's render context, or null */
    static app::OrvelProcessorBase* GetCurProcessor(OrvelRenderContext* const& slot) {
        return slot ? slot->mProcessor : nullptr;
    }
};

} // namespace android::orvel
