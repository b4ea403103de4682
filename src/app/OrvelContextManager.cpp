#include "app/OrvelContextManager.h"

#include "app/ConfiguredModules.h"
#include "app/OrvelProcessorDataBase.h"
#include "app/OrvelRenderContext.h"
#include "base/OrvelLog.h"
#include "base/OrvelPattern.h"
#include "settings/OrvelSettings.h"

#include <atomic>
#include <sys/prctl.h>
#include <system_error>
#include <utility>

namespace android::orvel {

namespace {

constexpr size_t kThreadNameBytes = 128; // more than any system gives a thread's name

using Configuration = app::OrvelProcessorDataBase;

const Configuration& configuration() { return OrvelSettings::getInstance().getProcessorData(); }

struct CompiledPattern {
    const std::string text;
    const OrvelPattern pattern;
    const CompiledPattern* const previous; // stays, for threads that are using it: a process is given one as a rule
};

/** @return the pattern compiled, at its first use */
const OrvelPattern& compiled(const std::string& text) {
    static constinit std::atomic<const CompiledPattern*> sLatest{nullptr};
    const CompiledPattern* latest = sLatest.load(std::memory_order_acquire);
    if (!latest || latest->text != text) {
        latest = new CompiledPattern{text, OrvelPattern(text), latest};
        sLatest.store(latest, std::memory_order_release);
    }
    return latest->pattern;
}

constinit thread_local bool tHoldsLock = false;

} // namespace

/**
 * The manager's lock, for as long as the object lives. A logger or a driver may call the game from within our calls,
 * and the game EGL: a thread that has the lock gets it no second time, so test, and let such a call go unnoticed.
 */
class [[nodiscard]] OrvelContextManager::Lock {
public:
    explicit Lock(OrvelContextManager& manager) {
        if (!tHoldsLock) {
            mLock = std::unique_lock(manager.mMutex);
            tHoldsLock = true;
        }
    }
    ~Lock() {
        if (mLock) {
            tHoldsLock = false;
        }
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    explicit operator bool() const { return mLock.owns_lock(); }

private:
    std::unique_lock<std::mutex> mLock;
};

// Never destroyed: render threads may be inside a hook while the process ends, and no context is current then, so the
// render contexts are let go of as they are.
OrvelContextManager& OrvelContextManager::GetInstance() {
    static auto* const instance = new OrvelContextManager;
    return *instance;
}

bool OrvelContextManager::CreateAndAddRenderContext(void* eglContext) {
    if (!app::HasConfiguredModules() || configuration().mainContextMode != Configuration::MAIN_CONTEXT_EVERY) {
        return true; // the other modes make theirs when a context is made current
    }
    const Lock lock(*this);
    return !lock || CreateAndStore(eglContext) != nullptr;
}

void OrvelContextManager::EraseRenderContext(void* eglContext) {
    try {
        const Lock lock(*this);
        if (!lock) {
            return;
        }
        if (auto entry = mRenderContexts.extract(eglContext)) {
            Retire(std::move(entry.mapped()));
        }
    } catch (const std::system_error& error) {
        ORVEL_LOGW("%s", error.what());
    }
}

void OrvelContextManager::MakeCurrentRenderContext(void* eglContext) {
    try {
        const Lock lock(*this);
        if (!lock) {
            return;
        }
        if (!eglContext || !app::HasConfiguredModules()) {
            SetSlot(nullptr);
            return;
        }
        switch (configuration().mainContextMode) {
        case Configuration::MAIN_CONTEXT_BY_PIPELINE:
            MakeCurrentRenderContextPipeline(eglContext);
            break;
        case Configuration::MAIN_CONTEXT_BY_THREAD_NAME:
            MakeCurrentRenderContextThreadName(eglContext);
            break;
        default:
            if (OrvelRenderContext* const found = Find(eglContext)) {
                SetSlot(found);
            } else { // deliberate: the slot stays as it was
                ORVEL_LOGW("unrecognized context pointer: %p", eglContext);
            }
        }
    } catch (const std::system_error& error) {
        ORVEL_LOGW("%s", error.what());
    }
}

void OrvelContextManager::MakeCurrentRenderContextThreadName(void* eglContext) {
    SetSlot(nullptr); // should anything throw: EGL's context is made current all the same
    if (!mMainRenderContext && !mMainRenderContextChosen &&
        CheckIfMainRenderThreadName(configuration().mainThreadName)) {
        if (OrvelRenderContext* const created = CreateAndStore(eglContext)) {
            mMainRenderContext = created;
            mMainRenderContextChosen = true;
        }
    }
    const bool isMain = mMainRenderContext && mMainRenderContext->mContext == eglContext;
    SetSlot(isMain ? mMainRenderContext : nullptr);
}

void OrvelContextManager::MakeCurrentRenderContextPipeline(void* eglContext) {
    if (mMainRenderContext) {
        SetSlot(mMainRenderContext->mContext == eglContext ? mMainRenderContext : nullptr);
        return;
    }
    if (OrvelRenderContext* const found = Find(eglContext)) {
        SetSlot(found);
        return;
    }
    SetSlot(nullptr);                                            // as when a thread name decides
    const std::string& pattern = configuration().mainThreadName; // an empty one admits every thread
    if (mMainRenderContextChosen || (!pattern.empty() && !CheckIfMainRenderThreadName(pattern))) {
        return;
    }
    SetSlot(CreateAndStore(eglContext));
}

bool OrvelContextManager::CheckMainRenderContextByPipelineInfo() const {
    return configuration().mainContextMode == Configuration::MAIN_CONTEXT_BY_PIPELINE && !mMainRenderContextChosen;
}

void OrvelContextManager::UpdateMainRenderContextByPipelineInfo() {
    if (mMainRenderContextChosen) {
        return;
    }
    const Lock lock(*this);
    OrvelRenderContext* const current = gContextTls;
    // A context that was destroyed while this thread draws with it cannot be the main one.
    if (!lock || mMainRenderContextChosen || !current || Find(current->mContext) != current) {
        return;
    }
    mMainRenderContext = current;
    mMainRenderContextChosen = true;
}

bool OrvelContextManager::CheckIfMainRenderThreadName(const std::string& pattern) {
    char name[kThreadNameBytes] = {};
    prctl(PR_GET_NAME, name);
    return compiled(pattern).matches(name);
}

OrvelRenderContext* OrvelContextManager::Find(void* eglContext) const {
    const auto found = mRenderContexts.find(eglContext);
    return found == mRenderContexts.end() ? nullptr : found->second.get();
}

/** @return the new render context, in place of one whose EGL context had the same address; or null */
OrvelRenderContext* OrvelContextManager::CreateAndStore(void* eglContext) {
    auto created = OrvelRenderContext::Create(eglContext);
    if (!created) {
        return nullptr;
    }
    OrvelRenderContext* const stored = created.get();
    Retire(std::exchange(mRenderContexts[eglContext], std::move(created)));
    return stored;
}

/**
 * Destroys a render context whose EGL context goes, or parks it: EGL keeps a context alive while it is current on
 * another thread, which draws on and still finds its processor.
 */
void OrvelContextManager::Retire(std::unique_ptr<OrvelRenderContext> retired) {
    if (!retired) {
        return;
    }
    if (gContextTls == retired.get()) {
        SetSlot(nullptr);
    }
    if (mMainRenderContext == retired.get()) {
        mMainRenderContext = nullptr;
    }
    if (retired->mThreads > 0) {
        OrvelRenderContext* const parked = retired.release(); // kept for ever should there be no memory to park it
        mParked.emplace_back(parked);
    }
}

/**
 * Makes a render context, or none, current on the calling thread. The last thread to leave a parked one destroys it.
 */
void OrvelContextManager::SetSlot(OrvelRenderContext* current) {
    if (current) {
        ++current->mThreads;
    }
    OrvelRenderContext* const left = std::exchange(gContextTls, current);
    if (left && --left->mThreads == 0) {
        std::erase_if(mParked, [left](const auto& parked) { return parked.get() == left; });
    }
}

} // namespace android::orvel
