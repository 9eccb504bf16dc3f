// Conversions between the virtual clock's nanoseconds and the counts of counters that run at a
// fixed rate (the performance counter, the time-stamp counter).
#pragma once

#include <cstdint>

namespace Hostkit::sim {

constexpr std::uint64_t kNsPerSecond = 1000000000;

// The count a counter of `perSecond` shows after `nanoseconds`.
std::uint64_t ScaleTime(std::uint64_t nanoseconds, std::uint64_t perSecond);
// The first moment at which such a counter shows `count`.
std::uint64_t TimeOfCount(std::uint64_t count, std::uint64_t perSecond);

}  // namespace Hostkit::sim
