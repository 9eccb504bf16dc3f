// Memory and drives forwarded to kernel32.
#include "platform/storage.h"

namespace Hostkit::platform {

void GlobalMemoryStatus(MEMORYSTATUS* status) { ::GlobalMemoryStatus(status); }
DWORD GetLogicalDrives() { return ::GetLogicalDrives(); }
UINT GetDriveTypeA(const char* rootPath) { return ::GetDriveTypeA(rootPath); }
BOOL GetDiskFreeSpaceA(const char* rootPath, DWORD* sectorsPerCluster, DWORD* bytesPerSector,
                       DWORD* freeClusters, DWORD* totalClusters) {
  return ::GetDiskFreeSpaceA(rootPath, sectorsPerCluster, bytesPerSector, freeClusters,
                             totalClusters);
}
UINT GetWindowsDirectoryA(char* buffer, UINT size) { return ::GetWindowsDirectoryA(buffer, size); }

}  // namespace Hostkit::platform
