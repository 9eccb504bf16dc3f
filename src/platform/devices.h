// Kernel devices: DOS device names, opening a device and sending it control requests.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

DWORD QueryDosDeviceA(const char* deviceName, char* targetPath, DWORD max);
BOOL DefineDosDeviceA(DWORD flags, const char* deviceName, const char* targetPath);
// Devices only ("\\.\NAME"); close the handle with CloseHandle.
HANDLE CreateFileA(const char* fileName, DWORD access, DWORD shareMode,
                   SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
                   HANDLE templateFile);
BOOL DeviceIoControl(HANDLE device, DWORD controlCode, void* inBuffer, DWORD inSize,
                     void* outBuffer, DWORD outSize, DWORD* bytesReturned, OVERLAPPED* overlapped);

}  // namespace Hostkit::platform
