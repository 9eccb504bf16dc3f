// Every record that crosses into the system, checked at compile time.
//
// The shipped DLL is 32-bit, so in a 32-bit build each record must have the size 32-bit Windows
// 95 to XP give it; these sizes are the system's, not the headers' (a header that disagreed would
// fail here rather than corrupt the memory a system call writes). The control codes and record
// offsets the library writes out as numbers (USB, NDIS) are checked against the platform's own
// declarations in every Windows build.
#include <iphlpapi.h>
#include <ntddndis.h>
#include <setupapi.h>
#include <snmp.h>
#include <usbioctl.h>
#include <windows.h>
#include <winioctl.h>

#include <cstddef>

#include "platform/critical_section.h"
#include "platform/dhcp_vxd.h"
#include "platform/hardware_types.h"
#include "platform/iphlpapi.h"
#include "platform/ndis.h"
#include "platform/setupapi.h"
#include "platform/snmp.h"
#include "platform/usb_hub.h"

namespace Hostkit::platform {

namespace {

constexpr bool kThirtyTwoBit = sizeof(void*) == 4;

#define HOSTKIT_SIZE_ON_32_BIT(record, bytes)                \
  static_assert(!kThirtyTwoBit || sizeof(record) == (bytes), \
                #record " is not " #bytes " bytes as 32-bit Windows lays it out")

// Kernel32 and the version record: OSVERSIONINFOEX is pointer-free, the same everywhere.
HOSTKIT_SIZE_ON_32_BIT(OSVERSIONINFOA, 148);
HOSTKIT_SIZE_ON_32_BIT(OSVERSIONINFOEXA, 156);
static_assert(offsetof(OSVERSIONINFOEXA, wServicePackMajor) == 148 &&
              offsetof(OSVERSIONINFOEXA, wProductType) == 154);
HOSTKIT_SIZE_ON_32_BIT(SYSTEM_INFO, 36);
HOSTKIT_SIZE_ON_32_BIT(MEMORYSTATUS, 32);
HOSTKIT_SIZE_ON_32_BIT(CRITICAL_SECTION, 24);
HOSTKIT_SIZE_ON_32_BIT(SECURITY_ATTRIBUTES, 12);
HOSTKIT_SIZE_ON_32_BIT(OVERLAPPED, 20);
HOSTKIT_SIZE_ON_32_BIT(PRIVILEGE_SET, 20);
HOSTKIT_SIZE_ON_32_BIT(GENERIC_MAPPING, 16);

// IP Helper (GetAdaptersInfo, GetNetworkParams, GetIpForwardTable, GetInterfaceInfo). Its lease
// times are 32-bit on 32-bit Windows.
HOSTKIT_SIZE_ON_32_BIT(iphlpapi::LeaseTime, 4);
HOSTKIT_SIZE_ON_32_BIT(iphlpapi::IpAddrString, 40);
HOSTKIT_SIZE_ON_32_BIT(iphlpapi::IpAdapterInfo, 640);
static_assert(!kThirtyTwoBit || offsetof(iphlpapi::IpAdapterInfo, leaseObtained) == 632);
HOSTKIT_SIZE_ON_32_BIT(iphlpapi::FixedInfo, 584);
HOSTKIT_SIZE_ON_32_BIT(iphlpapi::IpForwardRow, 56);
HOSTKIT_SIZE_ON_32_BIT(iphlpapi::IpForwardTable, 60);
HOSTKIT_SIZE_ON_32_BIT(iphlpapi::IpAdapterIndexMap, 260);
HOSTKIT_SIZE_ON_32_BIT(iphlpapi::IpInterfaceInfo, 264);

// The SNMP extension agent's records (packed to 4 bytes by the system's own header).
HOSTKIT_SIZE_ON_32_BIT(snmp::AsnOctetString, 12);
HOSTKIT_SIZE_ON_32_BIT(snmp::AsnObjectIdentifier, 8);
HOSTKIT_SIZE_ON_32_BIT(snmp::AsnAny, 16);
HOSTKIT_SIZE_ON_32_BIT(snmp::SnmpVarBind, 24);
HOSTKIT_SIZE_ON_32_BIT(snmp::SnmpVarBindList, 8);

// SetupAPI.
HOSTKIT_SIZE_ON_32_BIT(setupapi::DeviceInfoData, 28);
static_assert(sizeof(setupapi::DeviceInfoData) == sizeof(SP_DEVINFO_DATA) &&
              sizeof(setupapi::ClassGuid) == sizeof(GUID));

// The Windows 9x DHCP VxD: fixed-width fields only, so the same in every build.
static_assert(sizeof(dhcpvxd::DhcpVxdAdapter) == 20 && sizeof(dhcpvxd::DhcpVxdAdapterKey) == 12);

// The USB device interface, read and written byte by byte at the offsets of platform/usb_hub.h.
static_assert(usbhub::kGetRootHubName == IOCTL_USB_GET_ROOT_HUB_NAME &&
              usbhub::kGetNodeInformation == IOCTL_USB_GET_NODE_INFORMATION &&
              usbhub::kGetNodeConnectionInformation == IOCTL_USB_GET_NODE_CONNECTION_INFORMATION &&
              usbhub::kGetNodeConnectionName == IOCTL_USB_GET_NODE_CONNECTION_NAME &&
              usbhub::kGetNodeConnectionDriverKeyName ==
                  IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME &&
              usbhub::kGetHcdDriverKeyName == IOCTL_GET_HCD_DRIVERKEY_NAME);
static_assert(usbhub::kNodeInformationSize == sizeof(USB_NODE_INFORMATION) &&
              usbhub::kPortCountOffset ==
                  offsetof(USB_NODE_INFORMATION, u.HubInformation.HubDescriptor.bNumberOfPorts));
static_assert(usbhub::kConnectionInformationFixedSize == sizeof(USB_NODE_CONNECTION_INFORMATION) &&
              usbhub::kPipeInfoSize == sizeof(USB_PIPE_INFO) &&
              usbhub::kDeviceDescriptorOffset ==
                  offsetof(USB_NODE_CONNECTION_INFORMATION, DeviceDescriptor) &&
              usbhub::kIsHubOffset == offsetof(USB_NODE_CONNECTION_INFORMATION, DeviceIsHub) &&
              usbhub::kStatusOffset == offsetof(USB_NODE_CONNECTION_INFORMATION, ConnectionStatus));

// NDIS.
static_assert(ndis::kQueryGlobalStats == IOCTL_NDIS_QUERY_GLOBAL_STATS &&
              ndis::kSupportedList == OID_GEN_SUPPORTED_LIST &&
              ndis::k8023PermanentAddress == OID_802_3_PERMANENT_ADDRESS &&
              ndis::k8023CurrentAddress == OID_802_3_CURRENT_ADDRESS &&
              ndis::kWanPermanentAddress == OID_WAN_PERMANENT_ADDRESS &&
              ndis::kWanCurrentAddress == OID_WAN_CURRENT_ADDRESS);

#undef HOSTKIT_SIZE_ON_32_BIT

}  // namespace

}  // namespace Hostkit::platform
