// FSR 1's two passes in double precision, written apart from the shaders.
#pragma once

#include "MesaContext.h"

Picture easuReference(const Picture& input, int outputWidth, int outputHeight);
Picture rcasReference(const Picture& input);
