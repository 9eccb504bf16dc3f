// Reading and writing the device facts of machine profiles.
#include "platform/sim/profile/devices.h"

#include <cctype>
#include <cstdio>
#include <string_view>

#include "platform/sim/profile/ras.h"
#include "platform/sim/profile/support.h"

namespace Hostkit::sim {

namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

struct NamedNumber {
  const char* name;
  DWORD number;
};

constexpr NamedNumber kNdisObjects[] = {
    {"supported list", 0x00010101}, {"802.3 permanent", 0x01010101}, {"802.3 current", 0x01010102},
    {"WAN permanent", 0x04010101},  {"WAN current", 0x04010102},
};

constexpr NamedNumber kServiceStates[] = {
    {"stopped", SERVICE_STOPPED},
    {"start pending", SERVICE_START_PENDING},
    {"stop pending", SERVICE_STOP_PENDING},
    {"running", SERVICE_RUNNING},
};

// USB port connection states by the names the driver stack gives them.
constexpr NamedNumber kUsbStates[] = {
    {"NoDeviceConnected", 0},    {"DeviceConnected", 1},         {"DeviceFailedEnumeration", 2},
    {"DeviceGeneralFailure", 3}, {"DeviceCausedOvercurrent", 4}, {"DeviceNotEnoughPower", 5},
};
constexpr size_t kMaxUsbPorts = 255;  // the hub descriptor's port count is one byte

template <size_t N>
const char* NameOf(const NamedNumber (&table)[N], DWORD number) {
  for (const auto& entry : table) {
    if (entry.number == number) {
      return entry.name;
    }
  }
  return nullptr;
}

template <size_t N>
bool NumberOf(const NamedNumber (&table)[N], const std::string& name, DWORD& number) {
  for (const auto& entry : table) {
    if (name == entry.name) {
      number = entry.number;
      return true;
    }
  }
  return false;
}

bool ParseObjectId(const std::string& text, DWORD& oid) {
  if (NumberOf(kNdisObjects, text, oid)) {
    return true;
  }
  if (text.size() < 3 || text.size() > 10 || text.compare(0, 2, "0x") != 0) {
    return false;
  }
  char* end = nullptr;
  const unsigned long value = std::strtoul(text.c_str() + 2, &end, 16);
  oid = static_cast<DWORD>(value);
  return end != nullptr && *end == '\0';
}

class DeviceFieldReader {
 public:
  DeviceFieldReader(Machine& machine, std::vector<std::string>& keys, std::string& what)
      : machine_(machine), keys_(keys), what_(what) {}

  bool Read(const std::string& key, const Json& value) {
    keys_ = {key};
    if (key == "devices") {
      return Devices(value);
    }
    if (key == "dosDevices") {
      return DosDevices(value);
    }
    if (key == "services") {
      return Services(value);
    }
    if (key == "ras") {
      return ReadRasField(value, machine_.ras(), keys_, what_);
    }
    return PresentDevices(value);
  }

 private:
  bool Fail(std::vector<std::string> keys, std::string what) {
    keys_ = std::move(keys);
    what_ = std::move(what);
    return false;
  }

  bool Devices(const Json& value) {
    if (!value.is_object()) {
      return Fail({"devices"}, "\"devices\" must be an object of devices by name");
    }
    for (const auto& [name, device] : value.items()) {
      SimDevice& simDevice = machine_.devices()[name];
      if (!device.is_object()) {
        return Fail({"devices", name}, "a device must be an object");
      }
      for (const auto& [field, objects] : device.items()) {
        if (field == "usb") {
          if (!Usb(name, objects, simDevice.usb)) {
            return false;
          }
          continue;
        }
        if (field != "ndis") {
          return Fail({"devices", name, field}, "unknown device field \"" + field + "\"");
        }
        if (!NdisObjects(name, objects, simDevice)) {
          return false;
        }
      }
    }
    return true;
  }

  bool NdisObjects(const std::string& device, const Json& objects, SimDevice& simDevice) {
    if (!objects.is_object()) {
      return Fail({"devices", device, "ndis"}, "\"ndis\" must be an object of objects");
    }
    for (const auto& [id, data] : objects.items()) {
      DWORD oid = 0;
      std::vector<BYTE> bytes;
      if (!ParseObjectId(id, oid)) {
        return Fail({"devices", device, "ndis", id}, "unknown NDIS object \"" + id + "\"");
      }
      if (!data.is_string() || !ParseBytes(data.get<std::string>(), bytes)) {
        return Fail({"devices", device, "ndis", id},
                    "NDIS data must be hexadecimal bytes such as \"00-60-08-12-34-56\"");
      }
      simDevice.ndisObjects[oid] = bytes;
    }
    return true;
  }

  // A host controller: { "rootHub": NAME, "driverKey": KEY }; a hub: { "ports": [ PORT... ] }.
  bool Usb(const std::string& device, const Json& value, SimUsb& usb) {
    const std::vector<std::string> at = {"devices", device, "usb"};
    if (!value.is_object() || value.contains("ports") == value.contains("rootHub")) {
      return Fail(at, "\"usb\" must be a host controller with \"rootHub\" or a hub with \"ports\"");
    }
    if (value.contains("rootHub")) {
      usb.role = SimUsb::Role::HostController;
      for (const auto& [field, member] : value.items()) {
        if ((field != "rootHub" && field != "driverKey") ||
            !JsonString(member, field == "rootHub" ? usb.rootHub : usb.driverKey)) {
          return Fail({"devices", device, "usb", field},
                      "a host controller has the strings \"rootHub\" and \"driverKey\"");
        }
      }
      return true;
    }
    usb.role = SimUsb::Role::Hub;
    const Json& ports = value["ports"];
    if (value.size() != 1 || !ports.is_array() || ports.size() > kMaxUsbPorts) {
      return Fail(at, "a hub has only \"ports\", a list of at most 255 ports");
    }
    usb.ports.assign(ports.size(), SimUsbPort{});
    for (size_t i = 0; i < ports.size(); ++i) {
      if (!UsbPort(ports[i], usb.ports[i])) {
        return Fail({"devices", device, "usb", "ports"},
                    "port " + std::to_string(i + 1) +
                        ": a port is \"empty\", \"failing\", a connection state such as "
                        "\"DeviceConnected\", or an object of \"status\", \"device\" "
                        "(\"VVVV:PPPP\"), \"driverKey\", \"hub\" and \"failing\"");
      }
    }
    return true;
  }

  // A port in short form (a word) or as an object; an object stands for a connected device
  // unless its "status" says otherwise.
  static bool UsbPort(const Json& value, SimUsbPort& port) {
    if (value.is_string()) {
      const std::string text = value.get<std::string>();
      port.queryFails = text == "failing";
      return text == "empty" || port.queryFails || NumberOf(kUsbStates, text, port.status);
    }
    if (!value.is_object()) {
      return false;
    }
    port.status = 1;
    for (const auto& [field, member] : value.items()) {
      bool ok = false;
      if (field == "status") {
        ok = member.is_string() && NumberOf(kUsbStates, member.get<std::string>(), port.status);
      } else if (field == "device") {
        ok = member.is_string() && UsbDeviceId(member.get<std::string>(), port);
      } else if (field == "driverKey" || field == "hub") {
        ok = JsonString(member, field == "hub" ? port.hub : port.driverKey);
      } else if (field == "failing" && member.is_boolean()) {
        port.queryFails = member.get<bool>();
        ok = true;
      }
      if (!ok) {
        return false;
      }
    }
    return true;
  }

  // "VVVV:PPPP": vendor and product identifiers in hexadecimal.
  static bool UsbDeviceId(const std::string& text, SimUsbPort& port) {
    if (text.size() != 9 || text[4] != ':') {
      return false;
    }
    unsigned value = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (i == 4) {
        continue;
      }
      const int digit = HexDigit(text[i]);
      if (digit < 0) {
        return false;
      }
      value = value << 4 | static_cast<unsigned>(digit);
    }
    port.vendorId = static_cast<WORD>(value >> 16);
    port.productId = static_cast<WORD>(value);
    return true;
  }

  bool DosDevices(const Json& value) {
    if (!value.is_object()) {
      return Fail({"dosDevices"}, "\"dosDevices\" must be an object of target lists");
    }
    for (const auto& [name, targets] : value.items()) {
      if (!targets.is_array()) {
        return Fail({"dosDevices", name}, "a DOS device name must have a list of targets");
      }
      auto& definitions = machine_.dosDevices()[name];
      for (const Json& target : targets) {
        if (!target.is_string()) {
          return Fail({"dosDevices", name}, "a DOS device target must be a string");
        }
        definitions.push_back(target.get<std::string>());
      }
    }
    return true;
  }

  bool Services(const Json& value) {
    if (!value.is_object()) {
      return Fail({"services"}, "\"services\" must be an object of service states");
    }
    for (const auto& [name, state] : value.items()) {
      DWORD number = 0;
      if (state.is_number_unsigned() && state.get<std::uint64_t>() <= 0xFFFFFFFFU) {
        number = static_cast<DWORD>(state.get<std::uint64_t>());
      } else if (!state.is_string() ||
                 !NumberOf(kServiceStates, state.get<std::string>(), number)) {
        return Fail({"services", name},
                    "a service state must be \"stopped\", \"start pending\", \"stop pending\", "
                    "\"running\" or a number");
      }
      machine_.services()[name].state = number;
    }
    return true;
  }

  // Instance identifiers, or objects of "id" and the device node's "status", "problem" and
  // "deviceObject".
  bool PresentDevices(const Json& value) {
    const char* what =
        "\"presentDevices\" must be a list of instance identifiers or of objects with \"id\" "
        "and \"status\", \"problem\" (numbers) and \"deviceObject\"";
    if (!value.is_array()) {
      return Fail({"presentDevices"}, what);
    }
    for (const Json& item : value) {
      if (item.is_string()) {
        machine_.presentDevices().push_back(item.get<std::string>());
        continue;
      }
      if (!item.is_object() || !item.contains("id") || !item["id"].is_string()) {
        return Fail({"presentDevices"}, what);
      }
      const std::string id = item["id"].get<std::string>();
      SimDevNode node;
      for (const auto& [field, member] : item.items()) {
        const bool ok = field == "id" ||
                        (field == "deviceObject" && JsonString(member, node.deviceObject)) ||
                        (field == "status" && JsonDword(member, node.status)) ||
                        (field == "problem" && JsonDword(member, node.problem));
        if (!ok) {
          return Fail({"presentDevices", id, field}, what);
        }
      }
      machine_.presentDevices().push_back(id);
      machine_.devNodes()[id] = node;
    }
    return true;
  }

  Machine& machine_;
  std::vector<std::string>& keys_;
  std::string& what_;
};

OrderedJson UsbPortJson(const SimUsbPort& port) {
  const bool plain =
      port.vendorId == 0 && port.productId == 0 && port.driverKey.empty() && port.hub.empty();
  if (plain && port.status == 0) {
    return port.queryFails ? "failing" : "empty";
  }
  OrderedJson json = OrderedJson::object();
  const char* status = NameOf(kUsbStates, port.status);
  json["status"] = status != nullptr ? status : "DeviceConnected";
  if (port.vendorId != 0 || port.productId != 0) {
    char id[16];
    std::snprintf(id, sizeof id, "%04X:%04X", static_cast<unsigned>(port.vendorId),
                  static_cast<unsigned>(port.productId));
    json["device"] = id;
  }
  if (!port.driverKey.empty()) {
    json["driverKey"] = port.driverKey;
  }
  if (!port.hub.empty()) {
    json["hub"] = port.hub;
  }
  if (port.queryFails) {
    json["failing"] = true;
  }
  return json;
}

OrderedJson UsbJson(const SimUsb& usb) {
  OrderedJson json = OrderedJson::object();
  if (usb.role == SimUsb::Role::HostController) {
    json["rootHub"] = usb.rootHub;
    if (!usb.driverKey.empty()) {
      json["driverKey"] = usb.driverKey;
    }
    return json;
  }
  OrderedJson ports = OrderedJson::array();
  for (const SimUsbPort& port : usb.ports) {
    ports.push_back(UsbPortJson(port));
  }
  json["ports"] = ports;
  return json;
}

}  // namespace

bool IsDeviceField(const std::string& key) {
  return key == "devices" || key == "dosDevices" || key == "services" || key == "presentDevices" ||
         key == "ras";
}

bool ReadDeviceField(const std::string& key, const nlohmann::json& value, Machine& machine,
                     std::vector<std::string>& keys, std::string& what) {
  return DeviceFieldReader(machine, keys, what).Read(key, value);
}

void WriteDeviceFields(Machine& machine, nlohmann::ordered_json& json) {
  if (!machine.devices().empty()) {
    OrderedJson devices = OrderedJson::object();
    for (const auto& [name, device] : machine.devices()) {
      OrderedJson ndis = OrderedJson::object();
      for (const auto& [oid, data] : device.ndisObjects) {
        char id[16];
        std::snprintf(id, sizeof id, "0x%08X", static_cast<unsigned>(oid));
        const char* known = NameOf(kNdisObjects, oid);
        ndis[known != nullptr ? known : id] = FormatBytes(data);
      }
      OrderedJson entry = OrderedJson::object();
      if (!ndis.empty() || device.usb.role == SimUsb::Role::None) {
        entry["ndis"] = ndis;
      }
      if (device.usb.role != SimUsb::Role::None) {
        entry["usb"] = UsbJson(device.usb);
      }
      devices[name] = entry;
    }
    json["devices"] = devices;
  }
  if (!machine.dosDevices().empty()) {
    OrderedJson names = OrderedJson::object();
    for (const auto& [name, targets] : machine.dosDevices()) {
      names[name] = targets;
    }
    json["dosDevices"] = names;
  }
  if (!machine.services().empty()) {
    OrderedJson services = OrderedJson::object();
    for (const auto& [name, service] : machine.services()) {
      const char* state = NameOf(kServiceStates, service.state);
      services[name] = state != nullptr ? OrderedJson(state) : OrderedJson(service.state);
    }
    json["services"] = services;
  }
  if (!machine.presentDevices().empty()) {
    OrderedJson present = OrderedJson::array();
    for (const std::string& id : machine.presentDevices()) {
      auto node = machine.devNodes().find(id);
      if (node == machine.devNodes().end()) {
        present.push_back(id);
        continue;
      }
      OrderedJson item = {
          {"id", id}, {"status", node->second.status}, {"problem", node->second.problem}};
      if (!node->second.deviceObject.empty()) {
        item["deviceObject"] = node->second.deviceObject;
      }
      present.push_back(item);
    }
    json["presentDevices"] = present;
  }
  WriteRasField(machine.ras(), json);
}

}  // namespace Hostkit::sim
