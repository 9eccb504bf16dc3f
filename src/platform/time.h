// Time of kernel32: sleeping, the millisecond tick count and the high-resolution performance
// counter. On the simulated machine all of them run on the machine's virtual clock, so waiting
// and timing cost no real time.
#pragma once

#include "platform/hardware_types.h"

namespace Hostkit::platform {

void Sleep(DWORD milliseconds);
// Milliseconds since the machine started, wrapping after 49.7 days.
DWORD GetTickCount();
BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
// FALSE when the machine has no performance counter.
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);

}  // namespace Hostkit::platform
