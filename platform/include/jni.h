// On a device <jni.h> is on the default include path; the packaged one sits in a folder of its own.
#pragma once

#include <nativehelper/jni.h>
