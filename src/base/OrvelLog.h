// The one door for log lines. Texts are part of the contract with those who read the log on a device.
#pragma once

#include <android/log.h>

#define ORVEL_LOG(priority, ...) __android_log_print(priority, "libOrvel", __VA_ARGS__)
#define ORVEL_LOGE(...) ORVEL_LOG(ANDROID_LOG_ERROR, __VA_ARGS__)
#define ORVEL_LOGW(...) ORVEL_LOG(ANDROID_LOG_WARN, __VA_ARGS__)
#define ORVEL_LOGI(...) ORVEL_LOG(ANDROID_LOG_INFO, __VA_ARGS__)
#define ORVEL_LOGD(...) ORVEL_LOG(ANDROID_LOG_DEBUG, __VA_ARGS__) // always written, at debug priority
// A line that is off costs one test of the flag; its arguments are not evaluated.
#define ORVEL_LOG_IF(flag, priority, ...)                                                                              \
    do {                                                                                                               \
        if (flag)                                                                                                      \
            ORVEL_LOG(priority, __VA_ARGS__);                                                                          \
    } while (false)
#define ORVEL_LOGE_IF(flag, ...) ORVEL_LOG_IF(flag, ANDROID_LOG_ERROR, __VA_ARGS__)
#define ORVEL_LOGI_IF(flag, ...) ORVEL_LOG_IF(flag, ANDROID_LOG_INFO, __VA_ARGS__)
#define ORVEL_LOGD_IF(flag, ...) ORVEL_LOG_IF(flag, ANDROID_LOG_DEBUG, __VA_ARGS__)
