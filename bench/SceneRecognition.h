// Every recogniser at work on one game's draws, and the least code that could make the same comparisons.
#pragma once

#include "next/OrvelNext.h"

/** Switches all recognisers on, without the thread that reports, and brings them to where each has most to compare. */
void recogniseScenes(const android::orvel::next::GlTable& hooked);

/** Switches them off again, for the process's next measurement. */
void endRecognition();

/** Floors that keep the same counts in one plain structure. */
void installRecognitionFloors(android::orvel::next::GlTable& table);

/** The driver's answer to how large the bound texture is: what the boss fight's draws are looked for after. */
void sizeTextures(android::orvel::next::GlTable& driver);
