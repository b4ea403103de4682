// libGLESv2.so.2: its entries jump through the thread's table, which lives in libEGL.so.1.
#include "PublicGl.h"
#include "ThreadTable.h"

namespace android::rig {

namespace {

template <auto Slot>
constexpr bool kLoaderAnswers = false;
#define ORVEL_ANSWERS(name)                                                                                            \
    template <>                                                                                                        \
    constexpr bool kLoaderAnswers<&GlTable::name> = true;
ORVEL_LOADER_GL(ORVEL_ANSWERS)
#undef ORVEL_ANSWERS

template <auto Slot>
auto publicEntry() {
    if constexpr (kLoaderAnswers<Slot>) {
        return orvelPublicGl.gl.*Slot;
    } else {
        return orNothing(orvelThreadGl->gl.*Slot);
    }
}

} // namespace

} // namespace android::rig

#define GL_ENTRY(Result, name, params, args, providers)                                                                \
    extern "C" [[gnu::visibility("default")]] Result GL_APIENTRY name params {                                         \
        return android::rig::publicEntry<&android::rig::GlTable::name>() args;                                         \
    }
#include <entries/gl_entries.in>
#undef GL_ENTRY
