// The least code that reads the same switches as a hook and passes the call on. A file of its own: the compiler must
// not see through it from the measuring loop.
#pragma once

#include "next/OrvelNext.h"

void installFloors(android::orvel::next::GlTable& table);
