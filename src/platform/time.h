// Time of kernel32 and the C library: sleeping, the millisecond tick count, the high-resolution
// performance counter and the seconds clock. On the simulated machine all of them run on the
// machine's virtual clock, so waiting and timing cost no real time.
#pragma once

#include <ctime>

#include "platform/hardware_types.h"

namespace Hostkit::platform {

void Sleep(DWORD milliseconds);
// Milliseconds since the machine started, wrapping after 49.7 days.
DWORD GetTickCount();
BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
// FALSE when the machine has no performance counter.
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);
// The C library's calendar clock in whole seconds, also stored in `seconds` when given.
std::time_t time(std::time_t* seconds);

}  // namespace Hostkit::platform
