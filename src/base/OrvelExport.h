// What the EGL loader may find in the library; everything else is hidden.
#pragma once

#define ORVEL_EXPORT __attribute__((visibility("default")))
