// "SNMPAPI.DLL" and "INETMIB1.DLL" of the simulated machine: the SNMP utility library's memory
// calls and the extension agent serving the MIB-II view of the machine's live network.
//
// The view holds ifNumber, the interfaces table (ifIndex, ifDescr, ifType, ifPhysAddress), the
// address table (ipAdEntAddr, ipAdEntIfIndex, ipAdEntNetMask) and the route table (ipRouteDest,
// ipRouteIfIndex, ipRouteNextHop, ipRouteMask), in lexicographic identifier order. Besides the
// machine's interfaces the stack has its loopback interface (index 1, type 24, 127.0.0.1/8,
// with the route to 127.0.0.0/8 through it).
//
// MIB-II indexes a route by its destination alone, so routes of one destination share a row:
// the later route in the machine's table order takes it, as when an agent fills its table keyed
// by destination from the route list. Two default routes through one interface thus report the
// later next hop; two default routes through different interfaces report only the later one.
#include "platform/snmp.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "hostkit/sim/live_network.h"
#include "hostkit/sim/machine.h"
#include "platform/modules.h"
#include "platform/sim/kernel/standard_modules.h"

namespace Hostkit::sim {

namespace {

namespace snmp = platform::snmp;

using Oid = std::vector<UINT>;

struct MibValue {
  BYTE type = snmp::kNull;
  LONG number = 0;
  std::vector<BYTE> bytes;  // octet strings and IP addresses
};

constexpr const char* kLoopbackDescription = "MS TCP Loopback interface";

void* WINAPI MemAlloc(UINT bytes) { return std::calloc(bytes != 0 ? bytes : 1, 1); }
void WINAPI MemFree(void* memory) { std::free(memory); }

Oid Concat(const Oid& prefix, std::initializer_list<Oid> parts) {
  Oid oid = prefix;
  for (const Oid& part : parts) {
    oid.insert(oid.end(), part.begin(), part.end());
  }
  return oid;
}

Oid AddressOid(const std::string& dotted) {
  BYTE bytes[4] = {};
  ParseDottedQuad(dotted, bytes);
  return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

MibValue Integer(DWORD number) { return {snmp::kInteger, static_cast<LONG>(number), {}}; }
MibValue Octets(std::vector<BYTE> bytes) { return {snmp::kOctetString, 0, std::move(bytes)}; }
MibValue Text(const std::string& text) { return Octets({text.begin(), text.end()}); }
MibValue Address(const std::string& dotted) {
  const Oid oid = AddressOid(dotted);
  return {snmp::kIpAddress, 0, {oid.begin(), oid.end()}};
}

// The machine's live network as the agent's view, ordered by identifier.
std::map<Oid, MibValue> BuildView(const LiveNetwork& network) {
  const Oid ifEntry = {1, 3, 6, 1, 2, 1, 2, 2, 1};
  const Oid ipAddrEntry = {1, 3, 6, 1, 2, 1, 4, 20, 1};
  const Oid ipRouteEntry = {1, 3, 6, 1, 2, 1, 4, 21, 1};

  LiveInterface loopback;
  loopback.index = kLoopbackIndex;
  loopback.description = kLoopbackDescription;
  loopback.type = kIfTypeLoopback;
  loopback.address = "127.0.0.1";
  loopback.mask = "255.0.0.0";
  std::vector<const LiveInterface*> interfaces = {&loopback};
  for (const LiveInterface& interface : network.interfaces) {
    interfaces.push_back(&interface);
  }

  std::map<Oid, MibValue> view;
  view[{1, 3, 6, 1, 2, 1, 2, 1, 0}] = Integer(static_cast<DWORD>(interfaces.size()));
  BYTE unused[4];
  for (const LiveInterface* interface : interfaces) {
    const Oid index = {interface->index};
    view[Concat(ifEntry, {{1}, index})] = Integer(interface->index);
    view[Concat(ifEntry, {{2}, index})] = Text(interface->description);
    view[Concat(ifEntry, {{3}, index})] = Integer(interface->type);
    view[Concat(ifEntry, {{6}, index})] = Octets(interface->hardwareAddress);
    if (ParseDottedQuad(interface->address, unused)) {
      const Oid address = AddressOid(interface->address);
      view[Concat(ipAddrEntry, {{1}, address})] = Address(interface->address);
      view[Concat(ipAddrEntry, {{2}, address})] = Integer(interface->index);
      view[Concat(ipAddrEntry, {{3}, address})] = Address(interface->mask);
    }
  }

  std::vector<LiveRoute> routes = {{"127.0.0.0", "255.0.0.0", "127.0.0.1", kLoopbackIndex}};
  routes.insert(routes.end(), network.routes.begin(), network.routes.end());
  for (const LiveRoute& route : routes) {
    if (!ParseDottedQuad(route.destination, unused)) {
      continue;
    }
    const Oid destination = AddressOid(route.destination);
    view[Concat(ipRouteEntry, {{1}, destination})] = Address(route.destination);
    view[Concat(ipRouteEntry, {{2}, destination})] = Integer(route.interfaceIndex);
    view[Concat(ipRouteEntry, {{7}, destination})] = Address(route.nextHop);
    view[Concat(ipRouteEntry, {{11}, destination})] = Address(route.mask);
  }
  return view;
}

BOOL WINAPI ExtensionInit(DWORD /*uptimeReference*/, HANDLE* trapEvent,
                          snmp::AsnObjectIdentifier* supportedView) {
  if (trapEvent == nullptr || supportedView == nullptr) {
    return FALSE;
  }
  *trapEvent = nullptr;  // the agent sends no traps
  // The view is answered in an array of the agent's own, as the agent copies its identifier.
  static constexpr UINT kView[] = {1, 3, 6, 1, 2, 1};
  auto* ids = static_cast<UINT*>(MemAlloc(sizeof kView));
  if (ids == nullptr) {
    return FALSE;
  }
  std::memcpy(ids, kView, sizeof kView);
  supportedView->ids = ids;
  supportedView->idLength = static_cast<UINT>(std::size(kView));
  return TRUE;
}

void FreeValue(snmp::AsnAny& value) {
  if ((value.asnType == snmp::kOctetString || value.asnType == snmp::kIpAddress) &&
      value.asnValue.string.dynamic != FALSE) {
    MemFree(value.asnValue.string.stream);
  }
  std::memset(&value, 0, sizeof value);
  value.asnType = snmp::kNull;
}

// Puts one entry of the view into the binding, in memory of the utility library.
bool Answer(snmp::SnmpVarBind& binding, const Oid& oid, const MibValue& value) {
  auto* ids = static_cast<UINT*>(MemAlloc(static_cast<UINT>(oid.size() * sizeof(UINT))));
  const bool hasStream = value.type != snmp::kInteger && !value.bytes.empty();
  BYTE* stream = nullptr;
  if (hasStream) {
    stream = static_cast<BYTE*>(MemAlloc(static_cast<UINT>(value.bytes.size())));
  }
  if (ids == nullptr || (hasStream && stream == nullptr)) {
    MemFree(ids);
    MemFree(stream);
    return false;
  }
  std::copy(oid.begin(), oid.end(), ids);
  std::copy(value.bytes.begin(), value.bytes.end(), stream);
  MemFree(binding.name.ids);
  binding.name.ids = ids;
  binding.name.idLength = static_cast<UINT>(oid.size());
  FreeValue(binding.value);
  binding.value.asnType = value.type;
  if (value.type == snmp::kInteger) {
    binding.value.asnValue.number = value.number;
  } else {
    binding.value.asnValue.string = {stream, static_cast<UINT>(value.bytes.size()), TRUE};
  }
  return true;
}

BOOL WINAPI ExtensionQuery(BYTE requestType, snmp::SnmpVarBindList* bindings, LONG* errorStatus,
                           LONG* errorIndex) {
  if (bindings == nullptr || errorStatus == nullptr || errorIndex == nullptr) {
    return FALSE;
  }
  *errorStatus = snmp::kNoError;
  *errorIndex = 0;
  if (requestType != snmp::kGet && requestType != snmp::kGetNext) {
    *errorStatus = snmp::kGenericError;
    return TRUE;
  }
  try {
    const std::map<Oid, MibValue> view = BuildView(ActiveMachine()->liveNetwork());
    for (UINT i = 0; i < bindings->len; ++i) {
      snmp::SnmpVarBind& binding = bindings->list[i];
      const Oid requested(binding.name.ids, binding.name.ids + binding.name.idLength);
      auto found = requestType == snmp::kGet ? view.find(requested) : view.upper_bound(requested);
      if (found == view.end()) {
        *errorStatus = snmp::kNoSuchName;
        *errorIndex = static_cast<LONG>(i + 1);
        return TRUE;
      }
      if (!Answer(binding, found->first, found->second)) {
        *errorStatus = snmp::kGenericError;
        *errorIndex = static_cast<LONG>(i + 1);
        return TRUE;
      }
    }
    return TRUE;
  } catch (...) {
    *errorStatus = snmp::kGenericError;
    return TRUE;
  }
}

}  // namespace

void AddSnmpModules(Machine& machine) {
  auto& utility = machine.modules()[snmp::kUtilityModule].entryPoints;
  utility[snmp::kMemAlloc] = platform::AsProc(&MemAlloc);
  utility[snmp::kMemFree] = platform::AsProc(&MemFree);
  auto& agent = machine.modules()[snmp::kAgentModule].entryPoints;
  agent[snmp::kExtensionInit] = platform::AsProc(&ExtensionInit);
  agent[snmp::kExtensionQuery] = platform::AsProc(&ExtensionQuery);
}

}  // namespace Hostkit::sim
