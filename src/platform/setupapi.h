// SetupAPI's device-information calls, as the library binds them at run time ("setupapi.dll",
// GetProcAddress by name): the entry-point types and the records they take, laid out as
// SetupAPI lays them out.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform::setupapi {

inline constexpr const char* kModule = "SETUPAPI.DLL";

struct ClassGuid {
  DWORD data1;
  WORD data2;
  WORD data3;
  BYTE data4[8];
};

// The network adapter device class, {4D36E972-E325-11CE-BFC1-08002BE10318}.
inline constexpr ClassGuid kNetClass = {
    0x4D36E972, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

struct DeviceInfoData {
  DWORD cbSize;
  ClassGuid classGuid;
  DWORD devInst;
  ULONG_PTR reserved;
};

constexpr DWORD kPresentOnly = 0x00000002;   // DIGCF_PRESENT
constexpr DWORD kDeviceDescription = 0;      // SPDRP_DEVICEDESC
constexpr DWORD kHardwareId = 1;             // SPDRP_HARDWAREID
constexpr DWORD kDriver = 9;                 // SPDRP_DRIVER
constexpr DWORD kPhysicalDeviceObject = 14;  // SPDRP_PHYSICAL_DEVICE_OBJECT_NAME
constexpr LONG kNoSuchDevinst = static_cast<LONG>(0xE000020B);
constexpr LONG kInvalidData = 13;

using GetClassDevsA = HANDLE(WINAPI*)(const ClassGuid* classGuid, const char* enumerator,
                                      HWND parent, DWORD flags);
using EnumDeviceInfo = BOOL(WINAPI*)(HANDLE set, DWORD index, DeviceInfoData* data);
using GetDeviceInstanceIdA = BOOL(WINAPI*)(HANDLE set, DeviceInfoData* data, char* id, DWORD size,
                                           DWORD* required);
using GetDeviceRegistryPropertyA = BOOL(WINAPI*)(HANDLE set, DeviceInfoData* data, DWORD property,
                                                 DWORD* type, BYTE* buffer, DWORD size,
                                                 DWORD* required);
using DestroyDeviceInfoList = BOOL(WINAPI*)(HANDLE set);

}  // namespace Hostkit::platform::setupapi
