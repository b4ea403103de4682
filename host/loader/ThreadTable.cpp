#include "ThreadTable.h"

#include "Library.h"
#include "Loader.h"

extern "C" {
__thread const android::gl_hooks_t* orvelThreadGl = &android::rig::gDriverHooks;
}

namespace android::rig {

namespace {

void use(const gl_hooks_t* table) {
    orvelThreadGl = table;
    if (gLibrary.setThreadSpecific) {
        gLibrary.setThreadSpecific(table);
    }
}

} // namespace

void enterContext() {
    const gl_hooks_t* table = nullptr;
    if (gLibrary.stub && gLibrary.stub->isEnabled()) {
        table = gLibrary.stub->getGLThreadSpecific(gConnection.hooks[egl_connection_t::GLESv2_INDEX]);
    }
    use(table ? table : &gDriverHooks);
}

void leaveContext() { use(&gDriverHooks); }

} // namespace android::rig
