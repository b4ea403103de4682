// Dynamic resolution at work: 64 recorded textures, each replaced, and the least code that could look them up.
#pragma once

#include "next/OrvelNext.h"

/** Lets the driver's table hand out texture names; call it before the tables are copied. */
void nameTextures(android::orvel::next::GlTable& driver);

/** Switches the feature on, records that many textures on framebuffers of five through the hooks, and replaces them. */
void playGame(const android::orvel::next::GlTable& hooked, int textures);

/** Asks for another size than the last and lets the swap end that finds it: one switch. */
void switchResolution();

/** Floors that look up one of so many textures in a map, as the feature must. */
void installDynamicResolutionFloors(android::orvel::next::GlTable& table, int textures);

/** Switches the feature off again, for the process's next measurement. */
void endGame();
