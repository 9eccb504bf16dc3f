// The live network of a machine profile, and the run-time bound modules or entries it lacks.
//
//   "network": {
//     "interfaces": [ { "index": 2, "name": "{6A2B...}", "description": "Realtek RTL8139",
//                       "type": "ethernet", "hardwareAddress": "00-0c-76-3a-5e-21",
//                       "address": "192.168.1.10", "mask": "255.255.255.0", "dhcp": true,
//                       "dhcpServer": "192.168.1.1",
//                       "server": { "address": "192.168.1.1", "leaseAddress": "192.168.1.10",
//                                   "leaseMask": "255.255.255.0", "leaseGateway": "192.168.1.1",
//                                   "domain": "home.example" } } ],
//     "routes": [ { "destination": "0.0.0.0", "mask": "0.0.0.0", "nextHop": "192.168.1.1",
//                   "interface": 2 } ],
//     "dns": [ "192.168.1.1" ],
//     "domain": "home.example"
//   },
//   "absent": [ "IPHLPAPI.DLL", "dhcpcsvc.dll!DhcpAcquireParameters" ]
//
// An interface's "type" is "ethernet", "ppp" or a MIB-II type number; index 1 belongs to the
// loopback interface. "server" is the DHCP server the interface reaches (none: no server
// answers). "absent" names modules, or "MODULE!ENTRY" entry points, that the release would
// have and this machine does not.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

bool IsNetworkField(const std::string& key);

// Reads "network" or "absent" into the machine. On failure `keys` is the path of the member at
// fault (from the field's key down) and `what` says what is wrong.
bool ReadNetworkField(const std::string& key, const nlohmann::json& value, Machine& machine,
                      std::vector<std::string>& keys, std::string& what);

// Adds the machine's live network and its missing modules, when there are any, to a profile.
void WriteNetworkFields(Machine& machine, nlohmann::ordered_json& json);

}  // namespace Hostkit::sim
