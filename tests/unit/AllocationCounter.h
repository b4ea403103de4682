// How often this process asked for memory through operator new, and for a mutex.
#pragma once

#include <cstddef>

size_t allocationsSoFar();
size_t locksSoFar();
