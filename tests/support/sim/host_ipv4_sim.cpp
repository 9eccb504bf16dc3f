// Host addresses on the simulation: a network with two addressed interfaces and one without.
#include "hostkit/sim/live_network.h"
#include "hostkit/sim/machine.h"
#include "platform/registry.h"
#include "support/host_ipv4.h"

namespace hostkit_test {

bool HostIpv4Addresses(std::vector<std::string>& addresses, std::string& /*whyNot*/) {
  auto machine = Hostkit::sim::ActiveMachine();
  if (machine->release() == Hostkit::sim::Release::WinNT4) {
    HKEY key = nullptr;
    Hostkit::platform::RegCreateKeyExA(HKEY_LOCAL_MACHINE,
                                       "System\\CurrentControlSet\\Services\\Tcpip\\Parameters", 0,
                                       nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    Hostkit::platform::RegCloseKey(key);
  }
  Hostkit::sim::LiveNetwork& network = machine->liveNetwork();
  network.interfaces.clear();
  Hostkit::sim::LiveInterface card;
  card.index = 2;
  card.description = "Realtek RTL8139 Family PCI Fast Ethernet NIC";
  card.hardwareAddress = {0x00, 0x0c, 0x76, 0x3a, 0x5e, 0x21};
  card.address = "192.168.1.10";
  card.mask = "255.255.255.0";
  network.interfaces.push_back(card);
  card.index = 3;
  card.description = "WAN (PPP/SLIP) Interface";
  card.type = Hostkit::sim::kIfTypePpp;
  card.address.clear();
  card.mask.clear();
  network.interfaces.push_back(card);
  card.index = 9;
  card.description = "Intel PRO/100";
  card.address = "10.20.30.40";
  card.mask = "255.0.0.0";
  network.interfaces.push_back(card);

  addresses.clear();
  for (const auto& interface : network.interfaces) {
    if (!interface.address.empty()) {
      addresses.push_back(interface.address);
    }
  }
  return true;
}

}  // namespace hostkit_test
