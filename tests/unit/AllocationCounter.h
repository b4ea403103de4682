// How often this process asked for memory through operator new.
#pragma once

#include <cstddef>

size_t allocationsSoFar();
