// The IP Helper records of platform/iphlpapi.h must be laid out exactly as the platform's own
// declarations, since IP Helper writes them into the library's buffers.
#include <iphlpapi.h>

#include <cstddef>

#include "platform/iphlpapi.h"

namespace Hostkit::platform::iphlpapi {

namespace {

#define HOSTKIT_SAME_FIELD(Own, ownField, Real, realField)              \
  static_assert(offsetof(Own, ownField) == offsetof(Real, realField) && \
                    sizeof(Own::ownField) == sizeof(Real::realField),   \
                #Own "::" #ownField " differs from " #Real "::" #realField)

static_assert(sizeof(IpAddrString) == sizeof(IP_ADDR_STRING));
HOSTKIT_SAME_FIELD(IpAddrString, next, IP_ADDR_STRING, Next);
HOSTKIT_SAME_FIELD(IpAddrString, ipAddress, IP_ADDR_STRING, IpAddress);
HOSTKIT_SAME_FIELD(IpAddrString, ipMask, IP_ADDR_STRING, IpMask);
HOSTKIT_SAME_FIELD(IpAddrString, context, IP_ADDR_STRING, Context);

static_assert(sizeof(IpAdapterInfo) == sizeof(IP_ADAPTER_INFO));
HOSTKIT_SAME_FIELD(IpAdapterInfo, next, IP_ADAPTER_INFO, Next);
HOSTKIT_SAME_FIELD(IpAdapterInfo, comboIndex, IP_ADAPTER_INFO, ComboIndex);
HOSTKIT_SAME_FIELD(IpAdapterInfo, adapterName, IP_ADAPTER_INFO, AdapterName);
HOSTKIT_SAME_FIELD(IpAdapterInfo, description, IP_ADAPTER_INFO, Description);
HOSTKIT_SAME_FIELD(IpAdapterInfo, addressLength, IP_ADAPTER_INFO, AddressLength);
HOSTKIT_SAME_FIELD(IpAdapterInfo, address, IP_ADAPTER_INFO, Address);
HOSTKIT_SAME_FIELD(IpAdapterInfo, index, IP_ADAPTER_INFO, Index);
HOSTKIT_SAME_FIELD(IpAdapterInfo, type, IP_ADAPTER_INFO, Type);
HOSTKIT_SAME_FIELD(IpAdapterInfo, dhcpEnabled, IP_ADAPTER_INFO, DhcpEnabled);
HOSTKIT_SAME_FIELD(IpAdapterInfo, currentIpAddress, IP_ADAPTER_INFO, CurrentIpAddress);
HOSTKIT_SAME_FIELD(IpAdapterInfo, ipAddressList, IP_ADAPTER_INFO, IpAddressList);
HOSTKIT_SAME_FIELD(IpAdapterInfo, gatewayList, IP_ADAPTER_INFO, GatewayList);
HOSTKIT_SAME_FIELD(IpAdapterInfo, dhcpServer, IP_ADAPTER_INFO, DhcpServer);
HOSTKIT_SAME_FIELD(IpAdapterInfo, haveWins, IP_ADAPTER_INFO, HaveWins);
HOSTKIT_SAME_FIELD(IpAdapterInfo, primaryWinsServer, IP_ADAPTER_INFO, PrimaryWinsServer);
HOSTKIT_SAME_FIELD(IpAdapterInfo, secondaryWinsServer, IP_ADAPTER_INFO, SecondaryWinsServer);
HOSTKIT_SAME_FIELD(IpAdapterInfo, leaseObtained, IP_ADAPTER_INFO, LeaseObtained);
HOSTKIT_SAME_FIELD(IpAdapterInfo, leaseExpires, IP_ADAPTER_INFO, LeaseExpires);

static_assert(sizeof(FixedInfo) == sizeof(FIXED_INFO));
HOSTKIT_SAME_FIELD(FixedInfo, hostName, FIXED_INFO, HostName);
HOSTKIT_SAME_FIELD(FixedInfo, domainName, FIXED_INFO, DomainName);
HOSTKIT_SAME_FIELD(FixedInfo, currentDnsServer, FIXED_INFO, CurrentDnsServer);
HOSTKIT_SAME_FIELD(FixedInfo, dnsServerList, FIXED_INFO, DnsServerList);
HOSTKIT_SAME_FIELD(FixedInfo, nodeType, FIXED_INFO, NodeType);
HOSTKIT_SAME_FIELD(FixedInfo, scopeId, FIXED_INFO, ScopeId);
HOSTKIT_SAME_FIELD(FixedInfo, enableRouting, FIXED_INFO, EnableRouting);
HOSTKIT_SAME_FIELD(FixedInfo, enableProxy, FIXED_INFO, EnableProxy);
HOSTKIT_SAME_FIELD(FixedInfo, enableDns, FIXED_INFO, EnableDns);

static_assert(sizeof(IpForwardRow) == sizeof(MIB_IPFORWARDROW));
HOSTKIT_SAME_FIELD(IpForwardRow, forwardDest, MIB_IPFORWARDROW, dwForwardDest);
HOSTKIT_SAME_FIELD(IpForwardRow, forwardMask, MIB_IPFORWARDROW, dwForwardMask);
HOSTKIT_SAME_FIELD(IpForwardRow, forwardNextHop, MIB_IPFORWARDROW, dwForwardNextHop);
HOSTKIT_SAME_FIELD(IpForwardRow, forwardIfIndex, MIB_IPFORWARDROW, dwForwardIfIndex);
HOSTKIT_SAME_FIELD(IpForwardRow, forwardType, MIB_IPFORWARDROW, dwForwardType);
HOSTKIT_SAME_FIELD(IpForwardRow, forwardProto, MIB_IPFORWARDROW, dwForwardProto);
HOSTKIT_SAME_FIELD(IpForwardRow, forwardMetric1, MIB_IPFORWARDROW, dwForwardMetric1);
HOSTKIT_SAME_FIELD(IpForwardRow, forwardMetric5, MIB_IPFORWARDROW, dwForwardMetric5);
static_assert(sizeof(IpForwardTable) == sizeof(MIB_IPFORWARDTABLE));
HOSTKIT_SAME_FIELD(IpForwardTable, numEntries, MIB_IPFORWARDTABLE, dwNumEntries);
HOSTKIT_SAME_FIELD(IpForwardTable, table, MIB_IPFORWARDTABLE, table);

static_assert(sizeof(IpAdapterIndexMap) == sizeof(IP_ADAPTER_INDEX_MAP));
HOSTKIT_SAME_FIELD(IpAdapterIndexMap, index, IP_ADAPTER_INDEX_MAP, Index);
HOSTKIT_SAME_FIELD(IpAdapterIndexMap, name, IP_ADAPTER_INDEX_MAP, Name);
static_assert(sizeof(IpInterfaceInfo) == sizeof(IP_INTERFACE_INFO));
HOSTKIT_SAME_FIELD(IpInterfaceInfo, numAdapters, IP_INTERFACE_INFO, NumAdapters);
HOSTKIT_SAME_FIELD(IpInterfaceInfo, adapter, IP_INTERFACE_INFO, Adapter);

static_assert(kBufferOverflow == ERROR_BUFFER_OVERFLOW && kNoData == ERROR_NO_DATA &&
              kInsufficientBuffer == ERROR_INSUFFICIENT_BUFFER &&
              kInvalidParameter == ERROR_INVALID_PARAMETER);
static_assert(kMaxAdapterName == MAX_ADAPTER_NAME_LENGTH &&
              kMaxAdapterDescription == MAX_ADAPTER_DESCRIPTION_LENGTH &&
              kMaxAdapterAddress == MAX_ADAPTER_ADDRESS_LENGTH &&
              kMaxInterfaceName == MAX_ADAPTER_NAME);

#undef HOSTKIT_SAME_FIELD

}  // namespace

}  // namespace Hostkit::platform::iphlpapi
