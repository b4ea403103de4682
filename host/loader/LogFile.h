// Where the log goes on a desktop, and the loader's own lines in it.
#pragma once

#include <android/log.h>

#define RIG_LOG(priority, ...) __android_log_print(priority, "orvel-rig", __VA_ARGS__)
#define RIG_LOGE(...) RIG_LOG(ANDROID_LOG_ERROR, __VA_ARGS__)
#define RIG_LOGW(...) RIG_LOG(ANDROID_LOG_WARN, __VA_ARGS__)

namespace android::rig {

/**
 * From now on every message becomes one line "<pid> <E|W|I|D> <tag>: text" of orvel/log under the system root, and of
 * standard error when ORVEL_LOG is 1. Without a root only warnings and errors are written, to standard error.
 */
void openLog();

} // namespace android::rig
