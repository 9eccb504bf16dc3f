// Processor faults (access violations, illegal and privileged instructions, division by zero
// and the like) raised inside a routine, caught as Windows catches them: with a structured or
// vectored exception handler. Without one a fault ends the whole process.
#pragma once

#include "platform/hardware_types.h"

namespace Hostkit::platform {

// Runs `routine(parameter)` on the calling thread under a handler for processor faults. TRUE,
// with the routine's result in `*result` (when not null), when the routine returned; FALSE when
// a processor fault ended it. The routine's frames are then abandoned as they stand: objects
// they hold are not destroyed, so a guarded routine keeps nothing that must be released.
BOOL CallWithFaultHandler(LPTHREAD_START_ROUTINE routine, void* parameter, DWORD* result);

}  // namespace Hostkit::platform
