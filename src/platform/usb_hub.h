// The USB device interface of host controllers ("\\.\HCDn") and hubs, asked with
// DeviceIoControl. The library and the simulated machine share these control codes and record
// facts; the records are packed and little-endian, so they are read and written byte by byte at
// these offsets and have the same size in every build:
//   name records:            [ULONG ConnectionIndex,] ULONG ActualLength, WCHAR Name[]
//   node information:        ULONG NodeType, hub descriptor (71 bytes), BOOLEAN HubIsBusPowered
//   connection information:  ULONG ConnectionIndex, device descriptor (18 bytes), UCHAR
//                            CurrentConfigurationValue, BOOLEAN LowSpeed, BOOLEAN DeviceIsHub,
//                            USHORT DeviceAddress, ULONG NumberOfOpenPipes, ULONG
//                            ConnectionStatus, then the open pipes (11 bytes each)
#pragma once

#include <cstddef>

#include "hostkit/win_types.h"

namespace Hostkit::platform::usbhub {

// A controller answers the root hub's name and a hub its node information to the same code.
inline constexpr DWORD kGetRootHubName = 0x220408;
inline constexpr DWORD kGetNodeInformation = 0x220408;
inline constexpr DWORD kGetNodeConnectionInformation = 0x22040C;
inline constexpr DWORD kGetNodeConnectionName = 0x220414;
inline constexpr DWORD kGetNodeConnectionDriverKeyName = 0x220420;
inline constexpr DWORD kGetHcdDriverKeyName = 0x220424;

inline constexpr DWORD kNodeInformationSize = 76;
inline constexpr std::size_t kPortCountOffset = 6;  // the hub descriptor's bNumberOfPorts

// The connection record without pipes, and with room for the 30 pipes a device may open.
inline constexpr DWORD kConnectionInformationFixedSize = 35;
inline constexpr DWORD kPipeInfoSize = 11;
inline constexpr DWORD kMaxPipes = 30;
inline constexpr DWORD kConnectionInformationSize =
    kConnectionInformationFixedSize + kMaxPipes * kPipeInfoSize;
inline constexpr std::size_t kDeviceDescriptorOffset = 4;
inline constexpr std::size_t kIsHubOffset = 24;
inline constexpr std::size_t kStatusOffset = 31;

}  // namespace Hostkit::platform::usbhub
