// What stands in the loader's table for a hooked entry glXxx: GlobalGlXxxHookFunctor<Processor>::GlXxx, which calls
// Processor::GlXxxHooked on the thread's processor, or the driver when the thread has none.
#pragma once

#include "app/HookableGl.h"
#include "app/OrvelRenderContext.h"
#include "next/OrvelNext.h"

namespace android::orvel {

/**
 * @tparam Slot      the entry
 * @tparam Processor the only processor type of this process, so that no test of the type is needed
 * @tparam Hooked    its method for the entry, of the entry's signature
 */
template <auto Slot, typename Processor, auto Hooked>
struct GlobalGlHook;
template <typename R, typename... Args, R (*next::GlTable::*Slot)(Args...), typename Processor, auto Hooked>
struct GlobalGlHook<Slot, Processor, Hooked> {
    static R GL_APIENTRY Call(Args... args) {
        app::OrvelProcessorBase* const processor = OrvelRenderContextTLS::GetCurProcessor(gContextTls);
        if (!processor) {
            return (next::gl.*Slot)(args...);
        }
        return (static_cast<Processor*>(processor)->*Hooked)(args...);
    }
};

#define ORVEL_GLOBAL_HOOK(Xxx)                                                                                         \
    template <typename Processor>                                                                                      \
    struct GlobalGl##Xxx##HookFunctor {                                                                                \
        static constexpr decltype(next::GlTable::gl##Xxx) Gl##Xxx =                                                    \
            GlobalGlHook<&next::GlTable::gl##Xxx, Processor, &Processor::Gl##Xxx##Hooked>::Call;                       \
    };
ORVEL_HOOKABLE_GL(ORVEL_GLOBAL_HOOK)
#undef ORVEL_GLOBAL_HOOK

} // namespace android::orvel
