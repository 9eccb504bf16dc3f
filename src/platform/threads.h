// Threads of kernel32: creation, termination, exit codes, priorities and the process's
// processor affinity. Waiting for a thread is WaitForSingleObject (platform/sync.h).
#pragma once

#include "platform/hardware_types.h"

namespace Hostkit::platform {

HANDLE CreateThread(SECURITY_ATTRIBUTES* security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start,
                    void* parameter, DWORD flags, DWORD* threadId);
BOOL TerminateThread(HANDLE thread, DWORD exitCode);
// STILL_ACTIVE while the thread runs.
BOOL GetExitCodeThread(HANDLE thread, DWORD* exitCode);
BOOL SetThreadPriority(HANDLE thread, int priority);
// THREAD_PRIORITY_ERROR_RETURN on failure.
int GetThreadPriority(HANDLE thread);
BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR* systemMask);

}  // namespace Hostkit::platform
