// What SGame's processor and filter add to a draw, to a bind and to labels.
#pragma once

#include <EGL/egldefs.h>

/** Call it once, when the saved tables hold this driver. */
void connectSGame(const android::egl_connection_t& driver);
void registerSGameTimes();
void countSGameInstructions();
