// Which render context belongs to which EGL context, and which one is current on each thread.
#pragma once

#include "base/Relaxed.h"

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace android::orvel {

class OrvelRenderContext;

/**
 * Follows the application's EGL contexts on all its threads. Which of them get a processor is the configuration's
 * mainContextMode:
 *   0  every one, when it is created
 *   1  the first one made current on a thread whose name matches; the main context
 *   2  those made current on such threads, until a processor recognises the main context by what is drawn in it
 * A main context is chosen once; when it is gone, no other becomes one.
 *
 * Processors begin and end under the manager's lock, so they must not call back. Readers of the slot take no lock. What
 * is called on a thread from within one of these calls, as by a logger, does nothing.
 */
class OrvelContextManager {
public:
    static OrvelContextManager& GetInstance();

    /**
     * To be called after the driver created a context.
     * @return false only when a render context was due and could not be made
     */
    bool CreateAndAddRenderContext(void* eglContext);
    /** To be called before the driver destroys a context. */
    void EraseRenderContext(void* eglContext);
    /** To be called before the driver makes a context current; null is a release. */
    void MakeCurrentRenderContext(void* eglContext);

    /** @return whether a main context is still to be recognised by what is drawn. Takes no lock. */
    bool CheckMainRenderContextByPipelineInfo() const;
    /** Makes the calling thread's render context the main one, unless one was chosen before. */
    void UpdateMainRenderContextByPipelineInfo();

    /** @return whether the calling thread's whole name matches the regular expression; not if that is malformed */
    static bool CheckIfMainRenderThreadName(const std::string& pattern);

private:
    class Lock;

    OrvelContextManager() = default;

    // Under the lock, all of them.
    void MakeCurrentRenderContextThreadName(void* eglContext);
    void MakeCurrentRenderContextPipeline(void* eglContext);
    OrvelRenderContext* Find(void* eglContext) const;
    OrvelRenderContext* CreateAndStore(void* eglContext);
    void Retire(std::unique_ptr<OrvelRenderContext> retired);
    void SetSlot(OrvelRenderContext* current);

    std::mutex mMutex;
    std::unordered_map<void*, std::unique_ptr<OrvelRenderContext>> mRenderContexts;
    std::vector<std::unique_ptr<OrvelRenderContext>> mParked; // their EGL context is gone, a thread draws on with it
    Relaxed<bool> mMainRenderContextChosen{false};            // never cleared; written under mMutex, read by every swap
    OrvelRenderContext* mMainRenderContext = nullptr;         // only ever set together with mMainRenderContextChosen
};

} // namespace android::orvel
