// The device facts of a machine profile: kernel devices with their NDIS objects, DOS device
// names, services and the present device instances.
//
//   "devices":        { "El90x1": { "ndis": { "802.3 current": "00-60-08-12-34-56" } } }
//   "dosDevices":     { "HCD0": [ "\\Device\\USBFDO-0" ] }
//   "services":       { "El90x": "running" }
//   "presentDevices": [ "PCI\\VEN_10B7&DEV_9200&SUBSYS_100010B7&REV_78\\4&1F7DBC9F&0&58F0" ]
//
// NDIS objects are named "802.3 current", "802.3 permanent", "WAN current", "WAN permanent",
// "supported list", or by their identifier ("0x01010102"); their data is hexadecimal bytes
// separated by "-", ":" or spaces. Service states are "stopped", "start pending", "stop
// pending", "running", or the state's number.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

// The profile field names this part reads.
bool IsDeviceField(const std::string& key);

// Reads one device field into the machine. On failure `keys` is the path of the member at
// fault (from the field's key down) and `what` says what is wrong.
bool ReadDeviceField(const std::string& key, const nlohmann::json& value, Machine& machine,
                     std::vector<std::string>& keys, std::string& what);

// Adds the machine's non-empty device facts to a profile being saved.
void WriteDeviceFields(Machine& machine, nlohmann::ordered_json& json);

}  // namespace Hostkit::sim
