// Kernel devices forwarded to kernel32.
#include "platform/devices.h"

namespace Hostkit::platform {

DWORD QueryDosDeviceA(const char* deviceName, char* targetPath, DWORD max) {
  return ::QueryDosDeviceA(deviceName, targetPath, max);
}
BOOL DefineDosDeviceA(DWORD flags, const char* deviceName, const char* targetPath) {
  return ::DefineDosDeviceA(flags, deviceName, targetPath);
}
HANDLE CreateFileA(const char* fileName, DWORD access, DWORD shareMode,
                   SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
                   HANDLE templateFile) {
  return ::CreateFileA(fileName, access, shareMode, security, disposition, flags, templateFile);
}
BOOL DeviceIoControl(HANDLE device, DWORD controlCode, void* inBuffer, DWORD inSize,
                     void* outBuffer, DWORD outSize, DWORD* bytesReturned, OVERLAPPED* overlapped) {
  return ::DeviceIoControl(device, controlCode, inBuffer, inSize, outBuffer, outSize, bytesReturned,
                           overlapped);
}

}  // namespace Hostkit::platform
