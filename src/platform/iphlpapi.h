// IP Helper ("IPHLPAPI.DLL") and the DHCP client ("dhcpcsvc.dll") as the library binds them at
// run time: the entry-point types and the records they fill, laid out as the platform lays
// them out (a Windows build checks the layouts against the platform's own declarations).
#pragma once

#include <cstdint>
#include <type_traits>

#include "hostkit/win_types.h"

namespace Hostkit::platform::iphlpapi {

inline constexpr const char* kModule = "IPHLPAPI.DLL";

inline constexpr const char* kIpReleaseAddress = "IpReleaseAddress";
inline constexpr const char* kIpRenewAddress = "IpRenewAddress";
inline constexpr const char* kGetInterfaceInfo = "GetInterfaceInfo";
inline constexpr const char* kGetAdaptersInfo = "GetAdaptersInfo";
inline constexpr const char* kGetNetworkParams = "GetNetworkParams";
inline constexpr const char* kGetIpForwardTable = "GetIpForwardTable";

// Results the table calls answer besides the common ones.
constexpr DWORD kBufferOverflow = 111;      // ERROR_BUFFER_OVERFLOW
constexpr DWORD kInsufficientBuffer = 122;  // ERROR_INSUFFICIENT_BUFFER
constexpr DWORD kNoData = 232;              // ERROR_NO_DATA
constexpr DWORD kInvalidParameter = 87;     // ERROR_INVALID_PARAMETER

// IP Helper's lease times are the time_t the system was built with: 32 bits on 32-bit Windows
// (every release the library serves), 64 on 64-bit Windows. The compiler's own time_t need not
// agree (a 32-bit build can choose a 64-bit time_t), so the records name the width themselves.
using LeaseTime = std::conditional_t<sizeof(void*) == 4, std::int32_t, std::int64_t>;

constexpr unsigned kMaxAdapterName = 256;
constexpr unsigned kMaxAdapterDescription = 128;
constexpr unsigned kMaxAdapterAddress = 8;
constexpr unsigned kMaxHostName = 128;
constexpr unsigned kMaxDomainName = 128;
constexpr unsigned kMaxScopeId = 256;
constexpr unsigned kMaxInterfaceName = 128;  // wide characters of an index map's name

// A dotted quad and its mask as text, linked into lists.
struct IpAddrString {
  IpAddrString* next;
  char ipAddress[16];
  char ipMask[16];
  DWORD context;
};

// One adapter of GetAdaptersInfo; the list is linked through `next` inside the caller's buffer.
struct IpAdapterInfo {
  IpAdapterInfo* next;
  DWORD comboIndex;
  char adapterName[kMaxAdapterName + 4];
  char description[kMaxAdapterDescription + 4];
  UINT addressLength;
  BYTE address[kMaxAdapterAddress];
  DWORD index;
  UINT type;
  UINT dhcpEnabled;
  IpAddrString* currentIpAddress;
  IpAddrString ipAddressList;
  IpAddrString gatewayList;
  IpAddrString dhcpServer;
  BOOL haveWins;
  IpAddrString primaryWinsServer;
  IpAddrString secondaryWinsServer;
  LeaseTime leaseObtained;
  LeaseTime leaseExpires;
};

// GetNetworkParams; further DNS servers are linked from `dnsServerList` inside the buffer.
struct FixedInfo {
  char hostName[kMaxHostName + 4];
  char domainName[kMaxDomainName + 4];
  IpAddrString* currentDnsServer;
  IpAddrString dnsServerList;
  UINT nodeType;
  char scopeId[kMaxScopeId + 4];
  UINT enableRouting;
  UINT enableProxy;
  UINT enableDns;
};

// One route of GetIpForwardTable; addresses are four bytes in memory (network) order.
struct IpForwardRow {
  DWORD forwardDest;
  DWORD forwardMask;
  DWORD forwardPolicy;
  DWORD forwardNextHop;
  DWORD forwardIfIndex;
  DWORD forwardType;
  DWORD forwardProto;
  DWORD forwardAge;
  DWORD forwardNextHopAS;
  DWORD forwardMetric1;
  DWORD forwardMetric2;
  DWORD forwardMetric3;
  DWORD forwardMetric4;
  DWORD forwardMetric5;
};

struct IpForwardTable {
  DWORD numEntries;
  IpForwardRow table[1];  // numEntries rows
};

constexpr DWORD kRouteTypeDirect = 3;             // MIB_IPROUTE_TYPE_DIRECT
constexpr DWORD kRouteTypeIndirect = 4;           // MIB_IPROUTE_TYPE_INDIRECT
constexpr DWORD kRouteProtoNetMgmt = 3;           // MIB_IPPROTO_NETMGMT
constexpr DWORD kRouteMetricUnused = 0xFFFFFFFF;  // MIB_IPROUTE_METRIC_UNUSED

// An interface as GetInterfaceInfo lists it and IpReleaseAddress/IpRenewAddress take it.
struct IpAdapterIndexMap {
  ULONG index;
  WCHAR name[kMaxInterfaceName];
};

struct IpInterfaceInfo {
  LONG numAdapters;
  IpAdapterIndexMap adapter[1];  // numAdapters entries
};

using IpReleaseAddressProc = DWORD(WINAPI*)(IpAdapterIndexMap* adapter);
using IpRenewAddressProc = DWORD(WINAPI*)(IpAdapterIndexMap* adapter);
using GetInterfaceInfoProc = DWORD(WINAPI*)(IpInterfaceInfo* table, ULONG* size);
using GetAdaptersInfoProc = DWORD(WINAPI*)(IpAdapterInfo* list, ULONG* size);
using GetNetworkParamsProc = DWORD(WINAPI*)(FixedInfo* info, ULONG* size);
using GetIpForwardTableProc = DWORD(WINAPI*)(IpForwardTable* table, ULONG* size, BOOL order);

}  // namespace Hostkit::platform::iphlpapi

namespace Hostkit::platform::dhcpcsvc {

inline constexpr const char* kModule = "dhcpcsvc.dll";
inline constexpr const char* kDhcpAcquireParameters = "DhcpAcquireParameters";
inline constexpr const char* kDhcpReleaseParameters = "DhcpReleaseParameters";

// Both take the adapter's name (the instance identifier on Windows 2000/XP, the service name on
// NT 4) and answer a Win32 error code.
using DhcpAcquireParametersProc = DWORD(WINAPI*)(WCHAR* adapterName);
using DhcpReleaseParametersProc = DWORD(WINAPI*)(WCHAR* adapterName);

}  // namespace Hostkit::platform::dhcpcsvc
