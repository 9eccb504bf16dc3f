// StaticTcpipInfo::GetAdapterInfo on a large simulated Windows XP registry: 20,000 device keys
// under "System\CurrentControlSet\Enum", 100 of them network adapters with their driver keys,
// TCP/IP interfaces, NetBT keys and NDIS devices; ten adapters are linked to TCP/IP.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "hostkit/regwiz.h"
#include "hostkit/sim/machine.h"
#include "hostkit/static_tcpip.h"

namespace {

using Hostkit::RegWiz;

constexpr int kDeviceKeys = 20000;
constexpr int kAdapters = 100;
constexpr int kLinkedAdapters = 10;
constexpr const char* kEnum = "System\\CurrentControlSet\\Enum\\PCI\\";
constexpr const char* kNetClass = "{4D36E972-E325-11CE-BFC1-08002BE10318}";

std::string Guid(int adapter) {
  char text[40];
  std::snprintf(text, sizeof text, "{%08X-1234-4321-ABCD-%012d}", 0x5C2D0000U + adapter, adapter);
  return text;
}

void Set(RegWiz& reg, const std::string& key, const char* name, const std::string& value) {
  reg.CreateKey(HKEY_LOCAL_MACHINE, key.c_str());
  reg.SetKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), name, value.c_str());
}

void AddAdapter(Hostkit::sim::Machine& machine, RegWiz& reg, int adapter, const std::string& device,
                const std::string& instance, std::vector<std::string>& bindings) {
  char driverKey[16];
  std::snprintf(driverKey, sizeof driverKey, "%04d", adapter);
  const std::string guid = Guid(adapter);
  Set(reg, device, "DeviceDesc", "Bench PCI Fast Ethernet Adapter #" + std::to_string(adapter));
  Set(reg, device, "Driver", std::string(kNetClass) + "\\" + driverKey);
  Set(reg, device, "ClassGUID", kNetClass);
  Set(reg,
      "System\\CurrentControlSet\\Control\\Class\\" + std::string(kNetClass) + "\\" + driverKey,
      "NetCfgInstanceId", guid);
  const std::string interfaceKey =
      "System\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + guid;
  Set(reg, interfaceKey, "IPAddress", "0.0.0.0");
  Set(reg, interfaceKey, "NameServer", "192.168.0.1,192.168.0.2");
  if (adapter < kLinkedAdapters) {
    bindings.push_back("\\Device\\" + guid);
  }
  machine.presentDevices().push_back(instance);
  machine.devices()[guid].ndisObjects[0x01010102] = {0x00, 0x0C, 0x76,
                                                     0x00, 0x00, static_cast<BYTE>(adapter)};
}

std::shared_ptr<Hostkit::sim::Machine> MakeMachine() {
  auto machine = std::make_shared<Hostkit::sim::Machine>(Hostkit::sim::Release::WinXP);
  const Hostkit::sim::ScopedMachine scope(machine);
  RegWiz reg;
  std::vector<std::string> bindings;
  const int spacing = kDeviceKeys / kAdapters;
  for (int key = 0; key < kDeviceKeys; ++key) {
    char name[64];
    std::snprintf(name, sizeof name, "VEN_%04X&DEV_%04X\\3&267A616A&0&%02X", 0x1000 + key / 8,
                  key % 8, key % 256);
    const std::string instance = std::string("PCI\\") + name;
    const std::string device = kEnum + std::string(name);
    const bool adapter = key % spacing == 0;
    Set(reg, device, "Class", adapter ? "Net" : "System");
    Set(reg, device, "Mfg", "Bench");
    Set(reg, device, "HardwareID", instance);
    if (adapter) {
      AddAdapter(*machine, reg, key / spacing, device, instance, bindings);
    }
  }
  reg.CreateKey(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Services\\Tcpip\\Linkage");
  reg.SetMultiStringKeyVal(HKEY_LOCAL_MACHINE,
                           "System\\CurrentControlSet\\Services\\Tcpip\\Linkage", "Bind", bindings);
  return machine;
}

const std::shared_ptr<Hostkit::sim::Machine>& BenchMachine() {
  static const auto machine = MakeMachine();
  return machine;
}

void BM_GetAdapterInfoXp(benchmark::State& state) {
  const auto& machine = BenchMachine();
  Hostkit::sim::ActivateMachine(machine);
  size_t found = 0;
  for (auto _ : state) {
    std::vector<Hostkit::StaticTcpipInfo::AdapterInfo> adapters;
    Hostkit::StaticTcpipInfo().GetAdapterInfo(adapters);
    found = adapters.size();
    benchmark::DoNotOptimize(adapters.data());
  }
  state.counters["adapters"] = static_cast<double>(found);
  Hostkit::sim::ActivateMachine(nullptr);
}
BENCHMARK(BM_GetAdapterInfoXp)->Unit(benchmark::kMillisecond);

// The first step alone: the depth search for the network device keys.
void BM_FindNetworkDeviceKeysXp(benchmark::State& state) {
  const auto& machine = BenchMachine();
  Hostkit::sim::ActivateMachine(machine);
  for (auto _ : state) {
    auto keys = RegWiz().GetAllSubKeys(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Enum",
                                       "Class", "^Net$");
    benchmark::DoNotOptimize(keys.data());
  }
  Hostkit::sim::ActivateMachine(nullptr);
}
BENCHMARK(BM_FindNetworkDeviceKeysXp)->Unit(benchmark::kMillisecond);

}  // namespace
