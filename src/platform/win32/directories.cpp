// Directory creation and search forwarded to kernel32.
#include "platform/directories.h"

namespace Hostkit::platform {

BOOL CreateDirectoryA(const char* path, SECURITY_ATTRIBUTES* security) {
  return ::CreateDirectoryA(path, security);
}
HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* found) {
  return ::FindFirstFileA(pattern, found);
}
BOOL FindNextFileA(HANDLE search, WIN32_FIND_DATAA* found) {
  return ::FindNextFileA(search, found);
}
BOOL FindClose(HANDLE search) { return ::FindClose(search); }

}  // namespace Hostkit::platform
