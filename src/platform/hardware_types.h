// Win32 records and constants of the processor, memory, disk, thread and timer calls, for the
// seam headers that take them. On Windows they come from <windows.h>.
#pragma once

#include <cstdint>

#include "hostkit/win_types.h"

#ifndef _WIN32

#ifndef WINAPI
#define WINAPI
#endif

using SIZE_T = std::size_t;
using DWORD_PTR = std::uintptr_t;
using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(void* parameter);

union LARGE_INTEGER {
  struct {
    DWORD LowPart;
    LONG HighPart;
  } u;
  std::int64_t QuadPart;
};

union ULARGE_INTEGER {
  struct {
    DWORD LowPart;
    DWORD HighPart;
  } u;
  std::uint64_t QuadPart;
};

struct SYSTEM_INFO {
  union {
    DWORD dwOemId;
    struct {
      WORD wProcessorArchitecture;
      WORD wReserved;
    } s;
  };
  DWORD dwPageSize;
  void* lpMinimumApplicationAddress;
  void* lpMaximumApplicationAddress;
  DWORD_PTR dwActiveProcessorMask;
  DWORD dwNumberOfProcessors;
  DWORD dwProcessorType;
  DWORD dwAllocationGranularity;
  WORD wProcessorLevel;
  WORD wProcessorRevision;
};

struct MEMORYSTATUS {
  DWORD dwLength;
  DWORD dwMemoryLoad;
  SIZE_T dwTotalPhys;
  SIZE_T dwAvailPhys;
  SIZE_T dwTotalPageFile;
  SIZE_T dwAvailPageFile;
  SIZE_T dwTotalVirtual;
  SIZE_T dwAvailVirtual;
};

constexpr WORD PROCESSOR_ARCHITECTURE_INTEL = 0;
constexpr DWORD PROCESSOR_INTEL_386 = 386;
constexpr DWORD PROCESSOR_INTEL_486 = 486;
constexpr DWORD PROCESSOR_INTEL_PENTIUM = 586;

constexpr UINT DRIVE_UNKNOWN = 0;
constexpr UINT DRIVE_NO_ROOT_DIR = 1;
constexpr UINT DRIVE_REMOVABLE = 2;
constexpr UINT DRIVE_FIXED = 3;
constexpr UINT DRIVE_REMOTE = 4;
constexpr UINT DRIVE_CDROM = 5;
constexpr UINT DRIVE_RAMDISK = 6;

constexpr DWORD STILL_ACTIVE = 259;
constexpr DWORD CREATE_SUSPENDED = 0x00000004;
constexpr int THREAD_PRIORITY_NORMAL = 0;
constexpr int THREAD_PRIORITY_TIME_CRITICAL = 15;
constexpr int THREAD_PRIORITY_ERROR_RETURN = 0x7FFFFFFF;

#endif  // !_WIN32
