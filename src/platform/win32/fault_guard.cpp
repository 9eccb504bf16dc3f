// Processor faults caught as structured exceptions. Where kernel32 has a vectored handler
// (Windows XP, and every 64-bit release) it is bound at run time and registered around the
// routine; on the 32-bit releases before XP a handler record is linked into the thread's
// exception chain (FS:[0]), which every Win32 release has. Either handler moves the faulting
// thread to a landing routine that jumps back into CallWithFaultHandler's frame, abandoning the
// routine's frames as an __except block does.
#include "platform/fault_guard.h"

#include "platform/modules.h"
#include "platform/once.h"

namespace Hostkit::platform {

namespace {

struct GuardFrame {
#if defined(__i386__)
  // The exception-chain record: first, so that the frame is the record the chain points at.
  GuardFrame* nextRecord;
  void* recordHandler;
#endif
  void* jump[5];          // __builtin_setjmp's buffer
  GuardFrame* outer;      // the guard this one runs inside on the same thread
  void* vectoredHandler;  // AddVectoredExceptionHandler's handle, null when not used
};

using VectoredHandlerFunction = LONG(WINAPI*)(EXCEPTION_POINTERS* info);
using AddVectoredExceptionHandlerFunction = void*(WINAPI*)(ULONG first,
                                                           VectoredHandlerFunction handler);
using RemoveVectoredExceptionHandlerFunction = ULONG(WINAPI*)(void* handle);

// The thread's innermost guard, for the vectored handler, which the system calls without one.
DWORD guardSlot = TLS_OUT_OF_INDEXES;
INIT_ONCE_RECORD guardSlotOnce{};

BOOL AllocateGuardSlot(void* /*parameter*/) {
  guardSlot = ::TlsAlloc();
  return TRUE;
}

bool IsProcessorFault(DWORD code) {
  switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_ARRAY_BOUNDS_EXCEEDED:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_FLT_DENORMAL_OPERAND:
    case EXCEPTION_FLT_DIVIDE_BY_ZERO:
    case EXCEPTION_FLT_INEXACT_RESULT:
    case EXCEPTION_FLT_INVALID_OPERATION:
    case EXCEPTION_FLT_OVERFLOW:
    case EXCEPTION_FLT_STACK_CHECK:
    case EXCEPTION_FLT_UNDERFLOW:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_IN_PAGE_ERROR:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
    case EXCEPTION_PRIV_INSTRUCTION:
      return true;
    default:
      return false;
  }
}

#if defined(__i386__)
#define HOSTKIT_LANDING_CONVENTION __attribute__((fastcall))
#else
#define HOSTKIT_LANDING_CONVENTION
#endif

// Where a faulting thread resumes, with its guard as first argument (ECX on 32 bits, RCX on 64).
[[noreturn]] void HOSTKIT_LANDING_CONVENTION Land(GuardFrame* frame) {
  __builtin_longjmp(frame->jump, 1);
}

// Resumes the thread in Land, on its own stack below the point of the fault, aligned as a call
// leaves it.
void RedirectToLanding(CONTEXT* context, GuardFrame* frame) {
  constexpr unsigned kBelowFault = 256;
#if defined(__x86_64__)
  context->Rsp = ((context->Rsp - kBelowFault) & ~DWORD64{15}) - 8;
  context->Rcx = reinterpret_cast<DWORD64>(frame);
  context->Rip = reinterpret_cast<DWORD64>(&Land);
#else
  context->Esp = ((context->Esp - kBelowFault) & ~DWORD{15}) - 4;
  context->Ecx = reinterpret_cast<DWORD>(frame);
  context->Eip = reinterpret_cast<DWORD>(&Land);
#endif
}

LONG WINAPI VectoredHandler(EXCEPTION_POINTERS* info) {
  if (!IsProcessorFault(info->ExceptionRecord->ExceptionCode)) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  // Faults of other threads pass through here too: leave their last error as it was.
  const DWORD lastError = ::GetLastError();
  auto* frame = static_cast<GuardFrame*>(::TlsGetValue(guardSlot));
  ::SetLastError(lastError);
  if (frame == nullptr) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  RedirectToLanding(info->ContextRecord, frame);
  return EXCEPTION_CONTINUE_EXECUTION;
}

#if defined(__i386__)
EXCEPTION_DISPOSITION __cdecl ChainHandler(EXCEPTION_RECORD* record, void* establisher,
                                           CONTEXT* context, void* /*dispatcher*/) {
  constexpr DWORD kUnwinding = 0x2 | 0x4;  // EXCEPTION_UNWINDING, EXCEPTION_EXIT_UNWIND
  if ((record->ExceptionFlags & kUnwinding) != 0 || !IsProcessorFault(record->ExceptionCode)) {
    return ExceptionContinueSearch;
  }
  RedirectToLanding(context, static_cast<GuardFrame*>(establisher));
  return ExceptionContinueExecution;
}
#endif

template <class F>
F Kernel32Entry(const char* name) {
  HMODULE kernel32 = ::GetModuleHandleA("kernel32.dll");
  return kernel32 != nullptr ? ProcAs<F>(::GetProcAddress(kernel32, name)) : nullptr;
}

void Install(GuardFrame& frame) {
  frame.outer = nullptr;
  frame.vectoredHandler = nullptr;
  ExecuteOnce(&guardSlotOnce, &AllocateGuardSlot, nullptr);
  const auto add =
      Kernel32Entry<AddVectoredExceptionHandlerFunction>("AddVectoredExceptionHandler");
  if (add != nullptr && guardSlot != TLS_OUT_OF_INDEXES) {
    frame.outer = static_cast<GuardFrame*>(::TlsGetValue(guardSlot));
    ::TlsSetValue(guardSlot, &frame);
    frame.vectoredHandler = add(1, &VectoredHandler);
    if (frame.vectoredHandler != nullptr) {
      return;
    }
    ::TlsSetValue(guardSlot, frame.outer);
  }
#if defined(__i386__)
  GuardFrame* head = nullptr;
  asm volatile("movl %%fs:0, %0" : "=r"(head));
  frame.nextRecord = head;
  frame.recordHandler = reinterpret_cast<void*>(&ChainHandler);
  asm volatile("movl %0, %%fs:0" : : "r"(&frame) : "memory");
#endif
}

void Uninstall(GuardFrame& frame) {
  if (frame.vectoredHandler != nullptr) {
    const auto remove =
        Kernel32Entry<RemoveVectoredExceptionHandlerFunction>("RemoveVectoredExceptionHandler");
    if (remove != nullptr) {
      remove(frame.vectoredHandler);
    }
    ::TlsSetValue(guardSlot, frame.outer);
    return;
  }
#if defined(__i386__)
  asm volatile("movl %0, %%fs:0" : : "r"(frame.nextRecord) : "memory");
#endif
}

}  // namespace

// Not inlined: the jump back lands in this function's own frame.
__attribute__((noinline)) BOOL CallWithFaultHandler(LPTHREAD_START_ROUTINE routine, void* parameter,
                                                    DWORD* result) {
  GuardFrame frame{};
  Install(frame);
  if (__builtin_setjmp(frame.jump) != 0) {
    Uninstall(frame);
    return FALSE;
  }
  const DWORD value = routine(parameter);
  Uninstall(frame);
  if (result != nullptr) {
    *result = value;
  }
  return TRUE;
}

}  // namespace Hostkit::platform
