// Reading and writing the Remote Access facts of machine profiles.
#include "platform/sim/profile/ras.h"

#include <utility>

#include "platform/sim/profile/support.h"

namespace Hostkit::sim {

namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

bool Fail(std::vector<std::string>& keys, std::string& what, std::vector<std::string> at,
          std::string message) {
  keys = std::move(at);
  what = std::move(message);
  return false;
}

bool RasEntry(const Json& value, SimRasEntry& entry, std::string& at) {
  if (!value.is_object()) {
    return false;
  }
  for (const auto& [field, member] : value.items()) {
    at = field;
    const bool ok = (field == "phone" && JsonString(member, entry.phoneNumber)) ||
                    (field == "areaCode" && JsonString(member, entry.areaCode)) ||
                    (field == "device" && JsonString(member, entry.deviceName)) ||
                    (field == "deviceType" && JsonString(member, entry.deviceType)) ||
                    (field == "country" && JsonDword(member, entry.countryCode)) ||
                    (field == "delayMs" && JsonDword(member, entry.delayMs)) ||
                    (field == "error" && JsonDword(member, entry.error));
    if (!ok) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool ReadRasField(const nlohmann::json& value, SimRas& ras, std::vector<std::string>& keys,
                  std::string& what) {
  if (!value.is_object()) {
    return Fail(keys, what, {"ras"}, "\"ras\" must be an object of \"devices\" and \"entries\"");
  }
  for (const auto& [key, member] : value.items()) {
    if (key == "devices" && member.is_array()) {
      for (const Json& device : member) {
        SimRasDevice simDevice;
        if (!device.is_object() || !device.contains("name") ||
            !JsonString(device["name"], simDevice.name) ||
            (device.contains("type") && !JsonString(device["type"], simDevice.type)) ||
            device.size() > (device.contains("type") ? 2U : 1U)) {
          return Fail(keys, what, {"ras", "devices"},
                      "a RAS device is an object of \"name\" and \"type\"");
        }
        ras.devices.push_back(simDevice);
      }
    } else if (key == "entries" && member.is_object()) {
      for (const auto& [name, entry] : member.items()) {
        std::string field;
        if (!RasEntry(entry, ras.entries[name], field)) {
          return Fail(keys, what, {"ras", "entries", name, field},
                      "an entry has the strings \"phone\", \"areaCode\", \"device\", "
                      "\"deviceType\" and the numbers \"country\", \"delayMs\", \"error\"");
        }
      }
    } else {
      return Fail(keys, what, {"ras", key},
                  "\"ras\" has a list \"devices\" and an object \"entries\"");
    }
  }
  return true;
}

void WriteRasField(const SimRas& ras, OrderedJson& json) {
  if (ras.devices.empty() && ras.entries.empty()) {
    return;
  }
  OrderedJson devices = OrderedJson::array();
  for (const SimRasDevice& device : ras.devices) {
    devices.push_back({{"name", device.name}, {"type", device.type}});
  }
  OrderedJson entries = OrderedJson::object();
  for (const auto& [name, entry] : ras.entries) {
    entries[name] = {{"phone", entry.phoneNumber},
                     {"areaCode", entry.areaCode},
                     {"country", entry.countryCode},
                     {"device", entry.deviceName},
                     {"deviceType", entry.deviceType},
                     {"delayMs", entry.delayMs},
                     {"error", entry.error}};
  }
  json["ras"] = {{"devices", devices}, {"entries", entries}};
}

}  // namespace Hostkit::sim
