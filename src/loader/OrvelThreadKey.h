// The thread-specific key under which the EGL loader keeps each thread's current table.
#pragma once

#include <EGL/egldefs.h>

#include <pthread.h>

namespace android::orvel {

extern pthread_key_t gOrvelKey;

/** Makes a new key, without a destructor. */
void createThreadSpecificKey();
/** For the loader: sets the calling thread's table. */
void setThreadSpecific(const gl_hooks_t* value);
/** @return the calling thread's table, or null */
void* getThreadSpecific();
/** For the loader. The library keeps its key for the life of the process. */
void deleteThreadSpecificKey();

} // namespace android::orvel
