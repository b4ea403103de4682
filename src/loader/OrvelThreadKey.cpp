#include "loader/OrvelThreadKey.h"

#include "base/OrvelExport.h"

namespace android::orvel {

pthread_key_t gOrvelKey;

void createThreadSpecificKey() { pthread_key_create(&gOrvelKey, nullptr); }

ORVEL_EXPORT void setThreadSpecific(const gl_hooks_t* value) { pthread_setspecific(gOrvelKey, value); }

void* getThreadSpecific() { return pthread_getspecific(gOrvelKey); }

ORVEL_EXPORT void deleteThreadSpecificKey() { pthread_key_delete(gOrvelKey); }

} // namespace android::orvel
