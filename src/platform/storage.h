// Memory and drives of kernel32: total memory, drive letters and types, disk space and the
// Windows directory. The extended disk-space call, GetDiskFreeSpaceExA, is not part of every
// release and is reached through LoadLibraryA("Kernel32.dll") and GetProcAddress.
#pragma once

#include "platform/hardware_types.h"

namespace Hostkit::platform {

void GlobalMemoryStatus(MEMORYSTATUS* status);
// Bit 0 for A:, bit 1 for B:, ...
DWORD GetLogicalDrives();
UINT GetDriveTypeA(const char* rootPath);
BOOL GetDiskFreeSpaceA(const char* rootPath, DWORD* sectorsPerCluster, DWORD* bytesPerSector,
                       DWORD* freeClusters, DWORD* totalClusters);
UINT GetWindowsDirectoryA(char* buffer, UINT size);

// The signature of GetDiskFreeSpaceExA, as GetProcAddress hands it out.
using GetDiskFreeSpaceExAFunction = BOOL(WINAPI*)(const char* directory,
                                                  ULARGE_INTEGER* freeBytesAvailable,
                                                  ULARGE_INTEGER* totalBytes,
                                                  ULARGE_INTEGER* totalFreeBytes);

}  // namespace Hostkit::platform
