// The least code that keeps SGame's books and chooses shading rates for a bind and a draw: the same reads, writes and
// chain nodes as processor and module have, by hand.
#pragma once

#include "next/OrvelNext.h"

enum class Shading {
    IDLE,     // the lobby
    LEARNING, // a battle without a level: textures are labelled, no rate is set
    ACTING,   // a battle with a level
};

/** Fills glDrawElements and glBindTexture. The calling thread has a processor from here on. */
void installShadingRateFloors(android::orvel::next::GlTable& table);

/** Sets what the floors find; textures from 1 to count have two rates in turn. */
void setShadingRateFloors(Shading state, GLuint count);
