// The simulated Windows 95/98/Me DHCP client VxD.
#include "platform/sim/devices/dhcp_vxd.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <vector>

#include "platform/dhcp_vxd.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

namespace vxd = platform::dhcpvxd;

BOOL Fail(DWORD error) {
  platform::SetLastError(error);
  return FALSE;
}

BOOL QueryAdapters(LiveNetwork& network, void* out, DWORD outSize, DWORD& returned) {
  const auto count = static_cast<DWORD>(network.interfaces.size());
  if (out == nullptr || outSize < sizeof(DWORD)) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  std::memcpy(out, &count, sizeof count);
  if (outSize < vxd::AdapterListSize(count)) {
    returned = sizeof count;
    return Fail(ERROR_MORE_DATA);
  }
  auto* entries = reinterpret_cast<vxd::DhcpVxdAdapter*>(static_cast<BYTE*>(out) + sizeof count);
  for (DWORD i = 0; i < count; ++i) {
    const LiveInterface& interface = network.interfaces[i];
    vxd::DhcpVxdAdapter entry{};
    entry.hardwareAddressLength = static_cast<DWORD>(
        std::min<std::size_t>(interface.hardwareAddress.size(), vxd::kMaxHardwareAddress));
    std::copy_n(interface.hardwareAddress.begin(), entry.hardwareAddressLength,
                entry.hardwareAddress);
    if (!interface.dhcpServer.empty()) {
      ParseDottedQuad(interface.dhcpServer, entry.dhcpServer);
    }
    entry.dhcpEnabled = interface.dhcp ? 1 : 0;
    std::memcpy(&entries[i], &entry, sizeof entry);
  }
  returned = vxd::AdapterListSize(count);
  return TRUE;
}

BOOL QueryDomain(const LiveNetwork& network, void* out, DWORD outSize, DWORD& returned) {
  const auto needed = static_cast<DWORD>(network.domain.size() + 1);
  if (out == nullptr || outSize < needed) {
    returned = needed;
    return Fail(ERROR_MORE_DATA);
  }
  std::memcpy(out, network.domain.c_str(), needed);
  returned = needed;
  return TRUE;
}

BOOL LeaseRequest(LiveNetwork& network, DWORD controlCode, const void* in, DWORD inSize) {
  vxd::DhcpVxdAdapterKey key{};
  if (in == nullptr || inSize < sizeof key) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  std::memcpy(&key, in, sizeof key);
  if (key.hardwareAddressLength == 0 || key.hardwareAddressLength > vxd::kMaxHardwareAddress) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const std::vector<BYTE> address(key.hardwareAddress,
                                  key.hardwareAddress + key.hardwareAddressLength);
  LiveInterface* interface = network.byHardwareAddress(address);
  if (interface == nullptr) {
    return Fail(ERROR_FILE_NOT_FOUND);
  }
  if (!interface->dhcp) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  if (controlCode == vxd::kRelease) {
    ReleaseLease(network, *interface, "vxd");
  } else {
    RenewLease(network, *interface, "vxd");
  }
  return TRUE;
}

}  // namespace

bool IsDhcpVxdName(Machine& machine, const std::string& name) {
  return machine.isWin9x() && NoCaseEqual(name, vxd::kDeviceName) &&
         machine.modules().count(vxd::kDeviceName) != 0;
}

void AddDhcpVxd(Machine& machine) {
  if (machine.isWin9x()) {
    machine.modules()[vxd::kDeviceName];
  }
}

BOOL DhcpVxdRequest(const DhcpVxdObject& device, DWORD controlCode, const void* in, DWORD inSize,
                    void* out, DWORD outSize, DWORD& returned) {
  Machine& machine = device.machine();
  machine.deviceRequests().push_back({vxd::kDeviceName, controlCode, inSize, outSize});
  LiveNetwork& network = machine.liveNetwork();
  switch (controlCode) {
    case vxd::kQueryAdapters:
      return QueryAdapters(network, out, outSize, returned);
    case vxd::kQueryDomain:
      return QueryDomain(network, out, outSize, returned);
    case vxd::kRelease:
    case vxd::kRenew:
      return LeaseRequest(network, controlCode, in, inSize);
    default:
      return Fail(ERROR_INVALID_FUNCTION);
  }
}

}  // namespace Hostkit::sim
