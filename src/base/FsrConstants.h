// Set-up constants of FSR 1's upscaling pass.
#pragma once

#include <array>

namespace android::orvel {

/**
 * Computes the sixteen constants (four vectors of four) that FSR 1's EASU pass takes for an input viewport of the whole
 * input size. Deliberate difference to the published set-up: the last two, zero there, carry input / output again.
 * @param inputWidth, inputHeight   texels of the picture to be enlarged; 0 gives infinite reciprocals
 * @param outputWidth, outputHeight texels of the enlarged picture; 0 gives infinite ratios
 */
std::array<float, 16> fsrEasuConstants(int inputWidth, int inputHeight, int outputWidth, int outputHeight);

} // namespace android::orvel
