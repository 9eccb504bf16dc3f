// The Windows 95/98/Me DHCP client VxD, opened as "\\.\vdhcp.386" with CreateFileA and asked
// with DeviceIoControl. The library and the simulated machine share these control codes and
// buffer layouts; every field is a fixed-width integer or byte array so the layout is the same
// for every build.
//
// Requests (codes 0 and 0xFFFFFFFF are taken by the VxD loader for open and close):
//
//   kQueryAdapters  in: none.
//                   out: DhcpVxdAdapterList: the adapter count, then one DhcpVxdAdapter per
//                   adapter the DHCP client knows. A buffer shorter than the whole list (but at
//                   least a DWORD) gets the count alone, 4 bytes returned, and the call fails
//                   with ERROR_MORE_DATA; shorter than a DWORD fails with
//                   ERROR_INSUFFICIENT_BUFFER. The bytes returned are the list's size.
//   kQueryDomain    in: none.
//                   out: the DNS domain DHCP supplied, ANSI, zero-terminated (an empty text when
//                   there is none). A buffer too small for it fails with ERROR_MORE_DATA and
//                   reports the size it needs, terminator included, as the bytes returned.
//   kRelease        in: DhcpVxdAdapterKey naming the adapter by hardware address.
//   kRenew          out: none. ERROR_FILE_NOT_FOUND when no adapter has the address,
//                   ERROR_INVALID_PARAMETER when it does not take its address by DHCP (the
//                   request then never reaches the client) or the key is malformed.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform::dhcpvxd {

inline constexpr const char* kDevicePath = "\\\\.\\vdhcp.386";
inline constexpr const char* kDeviceName = "vdhcp.386";  // the name after "\\.\"

constexpr DWORD kQueryAdapters = 0x00DC0001;
constexpr DWORD kQueryDomain = 0x00DC0002;
constexpr DWORD kRelease = 0x00DC0003;
constexpr DWORD kRenew = 0x00DC0004;

constexpr DWORD kMaxHardwareAddress = 8;

struct DhcpVxdAdapter {
  DWORD hardwareAddressLength;  // bytes used of hardwareAddress
  BYTE hardwareAddress[kMaxHardwareAddress];
  BYTE dhcpServer[4];  // memory order; all zero when no server gave the lease
  DWORD dhcpEnabled;   // 1 when the adapter takes its address by DHCP, else 0
};

struct DhcpVxdAdapterList {
  DWORD count;
  DhcpVxdAdapter adapters[1];  // `count` entries
};

struct DhcpVxdAdapterKey {
  DWORD hardwareAddressLength;
  BYTE hardwareAddress[kMaxHardwareAddress];
};

// The size of a list of `count` adapters.
constexpr DWORD AdapterListSize(DWORD count) {
  return static_cast<DWORD>(sizeof(DWORD) + count * sizeof(DhcpVxdAdapter));
}

static_assert(sizeof(DhcpVxdAdapter) == 20, "the adapter entry is 20 bytes");
static_assert(sizeof(DhcpVxdAdapterKey) == 12, "the adapter key is 12 bytes");

}  // namespace Hostkit::platform::dhcpvxd
