// FSR 1 as one writes it down first: the formulas one after the other, each fetching what it needs.
#pragma once

namespace bench {

extern const char* const kPlainEasu;
extern const char* const kPlainRcas;

} // namespace bench
