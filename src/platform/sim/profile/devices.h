// The device facts of a machine profile: kernel devices with their NDIS objects, DOS device
// names, services and the present device instances.
//
//   "devices":        { "El90x1": { "ndis": { "802.3 current": "00-60-08-12-34-56" } } }
//   "dosDevices":     { "HCD0": [ "\\Device\\USBFDO-0" ] }
//   "services":       { "El90x": "running" }
//   "presentDevices": [ "PCI\\VEN_10B7&DEV_9200&SUBSYS_100010B7&REV_78\\4&1F7DBC9F&0&58F0" ]
//
// A device may also have a USB role: a host controller names its root hub (the device interface
// name a DOS device name links to the hub's device) and its driver key; a hub lists its ports.
//
//   "USBFDO-0": { "usb": { "rootHub": "USB#ROOT_HUB#4&2D3A5C&0", "driverKey": "{36FC...}\\0000" } }
//   "USBPDO-0": { "usb": { "ports": [
//       "empty", { "device": "046D:C00E", "driverKey": "..." },
//       { "device": "0409:0059", "hub": "USB#VID_0409&PID_0059#5&1" },
//       "failing", "DeviceNotEnoughPower" ] } }
//
// A port is "empty", "failing" (its connection query fails), a connection state
// ("NoDeviceConnected", "DeviceConnected", "DeviceFailedEnumeration", "DeviceGeneralFailure",
// "DeviceCausedOvercurrent", "DeviceNotEnoughPower"), or an object of "status" (default
// "DeviceConnected"), "device" (vendor and product identifiers), "driverKey", "hub" (the
// attached hub's interface name) and "failing".
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
