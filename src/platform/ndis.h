// The NDIS statistics query a network driver answers through DeviceIoControl on its device
// ("\\.\SERVICE"): the input is one object identifier (a DWORD), the output the object's bytes.
// The library and the simulated machine share these codes.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform::ndis {

inline constexpr DWORD kQueryGlobalStats = 0x00170002;  // IOCTL_NDIS_QUERY_GLOBAL_STATS

inline constexpr DWORD kSupportedList = 0x00010101;         // OID_GEN_SUPPORTED_LIST
inline constexpr DWORD k8023PermanentAddress = 0x01010101;  // OID_802_3_PERMANENT_ADDRESS
inline constexpr DWORD k8023CurrentAddress = 0x01010102;    // OID_802_3_CURRENT_ADDRESS
inline constexpr DWORD kWanPermanentAddress = 0x04010101;   // OID_WAN_PERMANENT_ADDRESS
inline constexpr DWORD kWanCurrentAddress = 0x04010102;     // OID_WAN_CURRENT_ADDRESS

}  // namespace Hostkit::platform::ndis
