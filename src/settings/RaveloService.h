// How the system's tuning service is called.
#pragma once

#include <cstdint>

namespace android::orvel {

constexpr char kRaveloName[] = "velmor.ravelo";
constexpr char kRaveloInterface[] = "com.velmor.ravelo.IRaveloInterface";

// Transactions.
constexpr uint32_t kRaveloReportScene = 3;
constexpr uint32_t kRaveloGetConfiguration = 13;

} // namespace android::orvel
