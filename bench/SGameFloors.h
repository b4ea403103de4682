// The least code that keeps SGame's books by hand: the same reads and writes for a draw and a bind as the processor's
// and its filter's, without chains.
#pragma once

#include "next/OrvelNext.h"

/** Fills glDrawElements and glBindTexture. The calling thread has a processor from here on. */
void installSGameFloors(android::orvel::next::GlTable& table);

/** Makes known that many textures of the lobby, and as many of result screens, from 1 on. */
void setSGameFloorTextures(GLuint count);
