// Reading and writing the live network of machine profiles.
#include "platform/sim/profile/network.h"

#include <algorithm>
#include <utility>

#include "platform/sim/profile/support.h"

namespace Hostkit::sim {

namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;
using Keys = std::vector<std::string>;

class NetworkReader {
 public:
  NetworkReader(Machine& machine, Keys& keys, std::string& what)
      : machine_(machine), keys_(keys), what_(what) {}

  bool Network(const Json& value) {
    if (!value.is_object()) {
      return Fail({"network"}, "\"network\" must be an object");
    }
    LiveNetwork network;
    for (const auto& [key, member] : value.items()) {
      const Keys keys{"network", key};
      bool ok = true;
      if (key == "interfaces") {
        ok = List(member, keys,
                  [&](const Json& item, const Keys& at) { return Interface(item, at, network); });
      } else if (key == "routes") {
        ok = List(member, keys,
                  [&](const Json& item, const Keys& at) { return Route(item, at, network); });
      } else if (key == "dns") {
        ok = List(member, keys, [&](const Json& item, const Keys& at) {
          std::string server;
          return Address(item, at, server) && (network.dnsServers.push_back(server), true);
        });
      } else if (key == "domain") {
        ok = Text(member, keys, network.domain);
      } else {
        ok = Fail(keys, "unknown field \"" + key + "\" in \"network\"");
      }
      if (!ok) {
        return false;
      }
    }
    for (const LiveRoute& route : network.routes) {
      if (network.byIndex(route.interfaceIndex) == nullptr && route.interfaceIndex != 1) {
        return Fail({"network", "routes"}, "a route names interface " +
                                               std::to_string(route.interfaceIndex) +
                                               ", which the network does not have");
      }
    }
    machine_.liveNetwork() = std::move(network);
    return true;
  }

  bool Absent(const Json& value) {
    if (!value.is_array()) {
      return Fail({"absent"}, "\"absent\" must be a list of module or \"MODULE!ENTRY\" names");
    }
    for (const Json& item : value) {
      if (!item.is_string()) {
        return Fail({"absent"}, "\"absent\" must be a list of module or \"MODULE!ENTRY\" names");
      }
      const std::string name = item.get<std::string>();
      const size_t bang = name.find('!');
      auto module = machine_.modules().find(name.substr(0, bang));
      if (module == machine_.modules().end()) {
        return Fail({"absent"}, "this machine has no module \"" + name.substr(0, bang) + "\"");
      }
      if (bang == std::string::npos) {
        machine_.modules().erase(module);
      } else if (module->second.entryPoints.erase(name.substr(bang + 1)) == 0) {
        return Fail({"absent"}, "module \"" + name.substr(0, bang) + "\" has no entry \"" +
                                    name.substr(bang + 1) + "\"");
      }
    }
    return true;
  }

 private:
  bool Fail(Keys keys, std::string what) {
    keys_ = std::move(keys);
    what_ = std::move(what);
    return false;
  }

  template <class Each>
  bool List(const Json& value, const Keys& keys, Each each) {
    if (!value.is_array()) {
      return Fail(keys, "\"" + keys.back() + "\" must be a list");
    }
    for (size_t i = 0; i < value.size(); ++i) {
      Keys at = keys;
      at.push_back(std::to_string(i));
      if (!each(value[i], at)) {
        return false;
      }
    }
    return true;
  }

  bool Text(const Json& value, const Keys& keys, std::string& out) {
    if (!value.is_string() || !Utf8ToAnsi(machine_, value.get<std::string>(), out)) {
      return Fail(keys, "\"" + keys.back() + "\" must be text of the machine's code page");
    }
    return true;
  }

  bool Address(const Json& value, const Keys& keys, std::string& out) {
    BYTE bytes[4];
    if (!value.is_string() || !ParseDottedQuad(value.get<std::string>(), bytes)) {
      return Fail(keys, "\"" + keys.back() + "\" must be a dotted quad such as \"192.168.1.1\"");
    }
    out = value.get<std::string>();
    return true;
  }

  bool Number(const Json& value, const Keys& keys, DWORD& out) {
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > 0xFFFFFFFFULL) {
      return Fail(keys, "\"" + keys.back() + "\" must be a whole number");
    }
    out = value.get<DWORD>();
    return true;
  }

  bool Flag(const Json& value, const Keys& keys, bool& out) {
    if (!value.is_boolean()) {
      return Fail(keys, "\"" + keys.back() + "\" must be true or false");
    }
    out = value.get<bool>();
    return true;
  }

  bool Type(const Json& value, const Keys& keys, DWORD& out) {
    if (value == "ethernet") {
      out = kIfTypeEthernet;
      return true;
    }
    if (value == "ppp") {
      out = kIfTypePpp;
      return true;
    }
    return (value.is_number_unsigned() && Number(value, keys, out)) ||
           Fail(keys, "\"type\" must be \"ethernet\", \"ppp\" or a MIB-II interface type");
  }

  bool Server(const Json& value, const Keys& keys, DhcpServerModel& server) {
    if (!value.is_object()) {
      return Fail(keys, "\"server\" must be an object");
    }
    for (const auto& [key, member] : value.items()) {
      Keys at = keys;
      at.push_back(key);
      bool ok = true;
      if (key == "address") {
        ok = Address(member, at, server.address);
      } else if (key == "leaseAddress") {
        ok = Address(member, at, server.leaseAddress);
      } else if (key == "leaseMask") {
        ok = Address(member, at, server.leaseMask);
      } else if (key == "leaseGateway") {
        ok = Address(member, at, server.leaseGateway);
      } else if (key == "domain") {
        ok = Text(member, at, server.domain);
      } else {
        ok = Fail(at, "unknown field \"" + key + "\" in \"server\"");
      }
      if (!ok) {
        return false;
      }
    }
    if (server.address.empty() || server.leaseAddress.empty() || server.leaseMask.empty()) {
      return Fail(keys, "a DHCP server needs \"address\", \"leaseAddress\" and \"leaseMask\"");
    }
    return true;
  }

  bool Interface(const Json& item, const Keys& keys, LiveNetwork& network) {
    if (!item.is_object()) {
      return Fail(keys, "an interface must be an object");
    }
    LiveInterface interface;
    for (const auto& [key, member] : item.items()) {
      Keys at = keys;
      at.push_back(key);
      bool ok = true;
      if (key == "index") {
        ok = Number(member, at, interface.index);
      } else if (key == "name") {
        ok = Text(member, at, interface.name);
      } else if (key == "description") {
        ok = Text(member, at, interface.description);
      } else if (key == "type") {
        ok = Type(member, at, interface.type);
      } else if (key == "hardwareAddress") {
        ok =
            (member.is_string() &&
             ParseBytes(member.get<std::string>(), interface.hardwareAddress)) ||
            Fail(at, "\"hardwareAddress\" must be hexadecimal bytes such as \"00-0c-76-3a-5e-21\"");
      } else if (key == "address") {
        ok = Address(member, at, interface.address);
      } else if (key == "mask") {
        ok = Address(member, at, interface.mask);
      } else if (key == "dhcp") {
        ok = Flag(member, at, interface.dhcp);
      } else if (key == "dhcpServer") {
        ok = Address(member, at, interface.dhcpServer);
      } else if (key == "server") {
        ok = Server(member, at, interface.server.emplace());
      } else {
        ok = Fail(at, "unknown field \"" + key + "\" in an interface");
      }
      if (!ok) {
        return false;
      }
    }
    if (interface.index <= kLoopbackIndex) {
      return Fail(keys, "an interface needs an \"index\" of 2 or more (1 is the loopback)");
    }
    if (network.byIndex(interface.index) != nullptr) {
      return Fail(keys, "two interfaces have index " + std::to_string(interface.index));
    }
    network.interfaces.push_back(std::move(interface));
    return true;
  }

  bool Route(const Json& item, const Keys& keys, LiveNetwork& network) {
    if (!item.is_object()) {
      return Fail(keys, "a route must be an object");
    }
    LiveRoute route;
    for (const auto& [key, member] : item.items()) {
      Keys at = keys;
      at.push_back(key);
      bool ok = true;
      if (key == "destination") {
        ok = Address(member, at, route.destination);
      } else if (key == "mask") {
        ok = Address(member, at, route.mask);
      } else if (key == "nextHop") {
        ok = Address(member, at, route.nextHop);
      } else if (key == "interface") {
        ok = Number(member, at, route.interfaceIndex);
      } else {
        ok = Fail(at, "unknown field \"" + key + "\" in a route");
      }
      if (!ok) {
        return false;
      }
    }
    if (route.destination.empty() || route.mask.empty() || route.nextHop.empty()) {
      return Fail(keys, "a route needs \"destination\", \"mask\" and \"nextHop\"");
    }
    network.routes.push_back(std::move(route));
    return true;
  }

  Machine& machine_;
  Keys& keys_;
  std::string& what_;
};

std::string LowerBytes(const std::vector<BYTE>& bytes) {
  std::string text = FormatBytes(bytes);
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  });
  return text;
}

std::string Utf8(const Machine& machine, const std::string& ansi) {
  std::string utf8;
  return AnsiToUtf8(machine, ansi, utf8) ? utf8 : ansi;
}

OrderedJson InterfaceJson(const Machine& machine, const LiveInterface& interface) {
  OrderedJson json;
  json["index"] = interface.index;
  json["name"] = Utf8(machine, interface.name);
  json["description"] = Utf8(machine, interface.description);
  if (interface.type == kIfTypeEthernet) {
    json["type"] = "ethernet";
  } else if (interface.type == kIfTypePpp) {
    json["type"] = "ppp";
  } else {
    json["type"] = interface.type;
  }
  json["hardwareAddress"] = LowerBytes(interface.hardwareAddress);
  if (!interface.address.empty()) {
    json["address"] = interface.address;
  }
  if (!interface.mask.empty()) {
    json["mask"] = interface.mask;
  }
  json["dhcp"] = interface.dhcp;
  if (!interface.dhcpServer.empty()) {
    json["dhcpServer"] = interface.dhcpServer;
  }
  if (interface.server) {
    OrderedJson server;
    server["address"] = interface.server->address;
    server["leaseAddress"] = interface.server->leaseAddress;
    server["leaseMask"] = interface.server->leaseMask;
    if (!interface.server->leaseGateway.empty()) {
      server["leaseGateway"] = interface.server->leaseGateway;
    }
    if (!interface.server->domain.empty()) {
      server["domain"] = Utf8(machine, interface.server->domain);
    }
    json["server"] = std::move(server);
  }
  return json;
}

}  // namespace

bool IsNetworkField(const std::string& key) { return key == "network" || key == "absent"; }

bool ReadNetworkField(const std::string& key, const Json& value, Machine& machine, Keys& keys,
                      std::string& what) {
  NetworkReader reader(machine, keys, what);
  return key == "network" ? reader.Network(value) : reader.Absent(value);
}

void WriteNetworkFields(Machine& machine, OrderedJson& json) {
  const LiveNetwork& network = machine.liveNetwork();
  if (!network.interfaces.empty() || !network.routes.empty() || !network.dnsServers.empty() ||
      !network.domain.empty()) {
    OrderedJson out;
    out["interfaces"] = OrderedJson::array();
    for (const LiveInterface& interface : network.interfaces) {
      out["interfaces"].push_back(InterfaceJson(machine, interface));
    }
    out["routes"] = OrderedJson::array();
    for (const LiveRoute& route : network.routes) {
      out["routes"].push_back({{"destination", route.destination},
                               {"mask", route.mask},
                               {"nextHop", route.nextHop},
                               {"interface", route.interfaceIndex}});
    }
    out["dns"] = network.dnsServers;
    out["domain"] = Utf8(machine, network.domain);
    json["network"] = std::move(out);
  }
  // What the release's standard modules have and this machine lacks.
  Machine standard(machine.release());
  OrderedJson absent = OrderedJson::array();
  for (const auto& [name, module] : standard.modules()) {
    auto present = machine.modules().find(name);
    if (present == machine.modules().end()) {
      absent.push_back(name);
      continue;
    }
    for (const auto& [entry, proc] : module.entryPoints) {
      if (present->second.entryPoints.count(entry) == 0) {
        std::string qualified = name;
        qualified += '!';
        qualified += entry;
        absent.push_back(std::move(qualified));
      }
    }
  }
  if (!absent.empty()) {
    json["absent"] = std::move(absent);
  }
}

}  // namespace Hostkit::sim
