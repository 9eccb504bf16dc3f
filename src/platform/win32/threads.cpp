// Threads forwarded to kernel32.
#include "platform/threads.h"

namespace Hostkit::platform {

HANDLE CreateThread(SECURITY_ATTRIBUTES* security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start,
                    void* parameter, DWORD flags, DWORD* threadId) {
  return ::CreateThread(security, stackSize, start, parameter, flags, threadId);
}
BOOL TerminateThread(HANDLE thread, DWORD exitCode) { return ::TerminateThread(thread, exitCode); }
BOOL GetExitCodeThread(HANDLE thread, DWORD* exitCode) {
  return ::GetExitCodeThread(thread, exitCode);
}
BOOL SetThreadPriority(HANDLE thread, int priority) {
  return ::SetThreadPriority(thread, priority);
}
int GetThreadPriority(HANDLE thread) { return ::GetThreadPriority(thread); }
BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR* systemMask) {
  return ::GetProcessAffinityMask(process, processMask, systemMask);
}

}  // namespace Hostkit::platform
