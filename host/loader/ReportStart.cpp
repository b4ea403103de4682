// What the library's start came to, seen from outside: the tables before and after, and its binder calls.
#include "Report.h"

#include "Loader.h"

#include "DesktopBinder.h"

namespace android::rig {

namespace {

void addHook(const std::string& name) {
    ReportLayout& file = report();
    if (file.hookCount < ReportLayout::kMaxHooks) {
        copyText(file.hooks[file.hookCount], sizeof file.hooks[0], name);
    }
    ++file.hookCount;
}

void addPlatformQueryHooks(const platform_impl_t& before, const platform_impl_t& after) {
#define ORVEL_COMPARE(name)                                                                                            \
    if (before.name != after.name) {                                                                                   \
        addHook("platform." #name);                                                                                    \
    }
    ORVEL_COMPARE(glGetBooleanv)
    ORVEL_COMPARE(glGetFloatv)
    ORVEL_COMPARE(glGetIntegerv)
    ORVEL_COMPARE(glGetInteger64v)
    ORVEL_COMPARE(glGetString)
    ORVEL_COMPARE(glGetStringi)
#undef ORVEL_COMPARE
}

Reason whyNotEnabled(const egl_connection_t& cnx, const desktop::BinderTrace& calls) {
    if (!cnx.hooks[egl_connection_t::GLESv2_INDEX]) {
        return NO_GLES_TABLE;
    }
    if (calls.lookups == 0) {
        return NOT_LISTED; // the library asks for the packages of its own list only
    }
    if (calls.found == 0) {
        return SERVICE_ABSENT;
    }
    if (calls.transactions == 0 || calls.lastStatus != 0) {
        return CALL_FAILED;
    }
    return calls.lastException != 0 ? SERVICE_EXCEPTION : EMPTY_ANSWER;
}

} // namespace

void reportStart(const egl_connection_t& cnx, const egl_t& eglBefore, const platform_impl_t& platformBefore,
                 bool enabled) {
    for (const Entry& entry : glEntries()) {
        if (entry.in(gHooks.gl) != entry.in(gDriverHooks.gl)) {
            addHook(entry.name);
        }
    }
    for (const Entry& entry : eglEntries()) {
        if (entry.in(cnx.platform) != entry.in(platformBefore)) {
            addHook(std::string("platform.") + entry.name);
        }
        if (entry.in(cnx.egl) != entry.in(eglBefore)) {
            addHook(std::string("egl.") + entry.name);
        }
    }
    addPlatformQueryHooks(platformBefore, cnx.platform);

    ReportLayout& file = report();
    const bool framework = cnx.platform.eglCreateContext != platformBefore.eglCreateContext;
    file.layer = framework ? LAYER_FRAMEWORK : file.hookCount > 0 ? LAYER_LEGACY : LAYER_NONE;
    const desktop::BinderTrace& calls = desktop::binderTrace();
    file.binderLookups = calls.lookups;
    file.binderFound = calls.found;
    file.binderTransactions = calls.transactions;
    file.binderStatus = calls.lastStatus;
    file.binderException = calls.lastException;
    file.binderReplyBytes = calls.lastReplyBytes;
    file.reason = enabled ? NO_REASON : whyNotEnabled(cnx, calls);
    file.enabled = enabled;
}

} // namespace android::rig
