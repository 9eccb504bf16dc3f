// Time forwarded to kernel32.
#include "platform/time.h"

namespace Hostkit::platform {

void Sleep(DWORD milliseconds) { ::Sleep(milliseconds); }
DWORD GetTickCount() { return ::GetTickCount(); }
BOOL QueryPerformanceCounter(LARGE_INTEGER* count) { return ::QueryPerformanceCounter(count); }
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
  return ::QueryPerformanceFrequency(frequency);
}
std::time_t time(std::time_t* seconds) { return ::time(seconds); }

}  // namespace Hostkit::platform
