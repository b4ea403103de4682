// The package name as the application framework knows it, asked through JNI.
#pragma once

#include <utils/String8.h>

namespace android::orvel {

/**
 * Finds the framework class and method that know the package name.
 * @return false when the calling thread has no JNI environment (silently) or a step fails (logged)
 */
bool initActivityThreadClass();

/**
 * Asks the framework, until it has answered once, and keeps the answer.
 * @return the name; empty while the framework has none, or before initActivityThreadClass() has succeeded
 */
String8 getCurrentPackageName();

} // namespace android::orvel
