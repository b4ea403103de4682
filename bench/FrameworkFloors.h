// The least code that finds a processor through a thread's slot and runs a chain of nodes: the same reads as the
// framework's, by hand. A file of its own: the compiler must not see through it from the measuring loop.
#pragma once

#include "next/OrvelNext.h"

/** Fills what the floors hook: glDrawArrays, whose chain has nodes, and glBindFramebuffer, which is noted. */
void installFrameworkFloors(android::orvel::next::GlTable& table);

/** Gives the calling thread a processor whose chain has that many nodes; -1 takes it away. */
void setFloorNodes(int nodes);
