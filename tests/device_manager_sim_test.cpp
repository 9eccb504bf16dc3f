// DeviceManager on every release: the same two devices recorded in each family's own source
// (9x devnodes with allocations, NT 4 resource maps by driver, 2000/XP SetupAPI devices with the
// Plug and Play manager's map) read back alike, and the free interrupts and DMA channels.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostkit/device_manager.h"
#include "hostkit/regwiz.h"
#include "platform/registry.h"
#include "support/resource_bytes.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::DeviceManager;
using hostkit_test::Allocation;
using hostkit_test::Bytes;
using hostkit_test::Release;
using hostkit_test::ResourceList;

constexpr const char* kNetGuid = "{4D36E972-E325-11CE-BFC1-08002BE10318}";
constexpr const char* kModemGuid = "{4D36E96D-E325-11CE-BFC1-08002BE10318}";

void SetValue(HKEY root, const std::string& path, const char* name, DWORD type, const Bytes& data) {
  HKEY key = nullptr;
  ASSERT_EQ(Hostkit::platform::RegCreateKeyExA(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                               nullptr, &key, nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(Hostkit::platform::RegSetValueExA(key, name, 0, type, data.data(),
                                              static_cast<DWORD>(data.size())),
            ERROR_SUCCESS);
  Hostkit::platform::RegCloseKey(key);
}

void SetText(HKEY root, const std::string& path, const char* name, const std::string& text) {
  SetValue(root, path, name, REG_SZ, Bytes(text.c_str(), text.c_str() + text.size() + 1));
}

void SetDword(HKEY root, const std::string& path, const char* name, DWORD value) {
  Bytes bytes;
  hostkit_test::Put(bytes, value, 4);
  SetValue(root, path, name, REG_BINARY, bytes);  // 9x stores these as 4-byte binary
}

// A network card on IRQ 10 and ports 0x300-0x31F with a problem code of 0; a modem on IRQ 3,
// DMA 1 and ports 0x2F8-0x2FF with problem 22 (disabled), where the family records one.
struct Device {
  const char* node;  // devnode, driver or instance name
  const char* win9xClass;
  const char* guid;
  const char* ntGroup;
  const char* name;
  const char* hardwareId;
  const char* driver;
  DWORD problem;
  int irq;
  int dma;  // -1: none
  unsigned ioStart;
  unsigned ioEnd;
};

const Device kDevices[] = {
    {"NE2000", "Net", kNetGuid, "NDIS", "NE2000 Compatible", "ISAPNP\\NE2000", "Net\\0000", 0, 10,
     -1, 0x300, 0x31F},
    {"MODEM", "Modem", kModemGuid, "Extended base", "Standard Modem", "SERENUM\\MODEM",
     "Modem\\0000", 22, 3, 1, 0x2F8, 0x2FF},
};

void RecordWin9x(const Device& device) {
  const std::string node = std::string("Config Manager\\Enum\\") + device.node;
  const std::string hardwareKey = std::string("ISAPNP\\") + device.node + "\\0";
  SetText(HKEY_DYN_DATA, node, "HardWareKey", hardwareKey);
  SetDword(HKEY_DYN_DATA, node, "Problem", device.problem);
  Allocation allocation;
  allocation.Irq(device.irq).Io(device.ioStart, device.ioEnd);
  if (device.dma >= 0) {
    allocation.Dma(device.dma);
  }
  SetValue(HKEY_DYN_DATA, node, "Allocation", REG_BINARY, allocation.End());
  const std::string key = "Enum\\" + hardwareKey;
  SetText(HKEY_LOCAL_MACHINE, key, "Class", device.win9xClass);
  SetText(HKEY_LOCAL_MACHINE, key, "DeviceDesc", device.name);
  SetText(HKEY_LOCAL_MACHINE, key, "HardwareID", device.hardwareId);
  SetText(HKEY_LOCAL_MACHINE, key, "Driver", device.driver);
}

Bytes RawList(const Device& device) {
  ResourceList list;
  list.Interrupt(static_cast<unsigned long>(device.irq), static_cast<unsigned long>(device.irq))
      .Port(device.ioStart, device.ioEnd - device.ioStart + 1);
  if (device.dma >= 0) {
    list.Dma(static_cast<unsigned long>(device.dma));
  }
  return list.Build();
}

// The translated list names other numbers: reading it instead of the raw one would show.
Bytes TranslatedList() { return ResourceList().Interrupt(0x1B, 0x3B).Dma(6).Build(); }

void RecordNt4(const Device& device) {
  const std::string map = std::string("HARDWARE\\RESOURCEMAP\\OtherDrivers\\") + device.node;
  const std::string object = std::string("\\Device\\") + device.node + "0";
  SetValue(HKEY_LOCAL_MACHINE, map, (object + ".Raw").c_str(), REG_RESOURCE_LIST, RawList(device));
  SetValue(HKEY_LOCAL_MACHINE, map, (object + ".Translated").c_str(), REG_RESOURCE_LIST,
           TranslatedList());
  const std::string service = std::string("SYSTEM\\CurrentControlSet\\Services\\") + device.node;
  SetText(HKEY_LOCAL_MACHINE, service, "Group", device.ntGroup);
  SetText(HKEY_LOCAL_MACHINE, service, "DisplayName", device.name);
}

void RecordWin2000Xp(Hostkit::sim::Machine& machine, const Device& device) {
  const std::string id = std::string("ISAPNP\\") + device.node + "\\0";
  const std::string key = "SYSTEM\\CurrentControlSet\\Enum\\" + id;
  SetText(HKEY_LOCAL_MACHINE, key, "ClassGUID", device.guid);
  SetText(HKEY_LOCAL_MACHINE, key, "DeviceDesc", device.name);
  SetValue(HKEY_LOCAL_MACHINE, key, "HardwareID", REG_MULTI_SZ, [&] {
    Bytes bytes(device.hardwareId, device.hardwareId + std::string(device.hardwareId).size() + 1);
    const std::string second = "*PNP0000";
    bytes.insert(bytes.end(), second.c_str(), second.c_str() + second.size() + 1);
    bytes.push_back(0);
    return bytes;
  }());
  SetText(HKEY_LOCAL_MACHINE, key, "Driver", device.driver);
  const std::string object = std::string("\\Device\\0000004") + device.node[0];
  machine.presentDevices().push_back(id);
  machine.devNodes()[id] = {0x0180200A, device.problem, object};
  const std::string map = "HARDWARE\\RESOURCEMAP\\PnP Manager\\PnpManager";
  SetValue(HKEY_LOCAL_MACHINE, map, (object + ".Raw").c_str(), REG_RESOURCE_LIST, RawList(device));
  SetValue(HKEY_LOCAL_MACHINE, map, (object + ".Translated").c_str(), REG_RESOURCE_LIST,
           TranslatedList());
}

class DeviceInventory : public hostkit_test::SimPerRelease {
 protected:
  void SetUp() override {
    SimPerRelease::SetUp();
    for (const Device& device : kDevices) {
      if (isWin9x()) {
        RecordWin9x(device);
      } else if (GetParam() == Release::WinNT4) {
        RecordNt4(device);
      } else {
        RecordWin2000Xp(*machine_, device);
      }
    }
    // The system timer, which holds interrupt 0 and (here) DMA channel 2 without a device class.
    SetValue(HKEY_LOCAL_MACHINE, "HARDWARE\\RESOURCEMAP\\System Resources\\Physical Memory",
             "Timer.Raw", REG_RESOURCE_LIST, ResourceList().Interrupt(0, 0).Dma(2).Build());
    if (isWin9x()) {
      SetValue(HKEY_DYN_DATA, "Config Manager\\Enum\\TIMER", "Allocation", REG_BINARY,
               Allocation().Irq(0).Dma(2).End());
    }
  }
};

TEST_P(DeviceInventory, EachFamilyReadsItsDevicesAlike) {
  DeviceManager manager;
  for (const Device& device : kDevices) {
    const Hostkit::DEVICE_CLASS deviceClass =
        device.guid == kNetGuid ? Hostkit::DEVICE_CLASS_NETWORK
                                : (GetParam() == Release::WinNT4 ? Hostkit::DEVICE_CLASS_PORTS
                                                                 : Hostkit::DEVICE_CLASS_MODEM);
    const auto devices = manager.GetDevices(deviceClass);
    ASSERT_EQ(devices.size(), 1U) << device.name;
    const DeviceManager::DeviceInfo& got = devices[0];
    EXPECT_EQ(got.name, device.name);
    const bool nt4 = GetParam() == Release::WinNT4;
    EXPECT_EQ(got.hardwareId, nt4 ? "" : device.hardwareId);
    EXPECT_EQ(got.driver, nt4 ? std::string(device.node) : std::string(device.driver));
    EXPECT_EQ(got.problem, nt4 ? 0 : device.problem);
    EXPECT_EQ(got.resources.irqs, std::vector<int>{device.irq});
    EXPECT_EQ(got.resources.dmaChannels,
              device.dma >= 0 ? std::vector<int>{device.dma} : std::vector<int>{});
    ASSERT_EQ(got.resources.ioRanges.size(), 1U);
    EXPECT_EQ(got.resources.ioRanges[0].start, device.ioStart);
    EXPECT_EQ(got.resources.ioRanges[0].end, device.ioEnd);
  }
  EXPECT_TRUE(manager.GetDevices(Hostkit::DEVICE_CLASS_CDROM).empty());
}

TEST_P(DeviceInventory, FreeLinesLeaveOutHeldAndCascadeOnes) {
  DeviceManager manager;
  // Held: 0 (timer or system resources), 3 (modem), 10 (card); 2 cascades.
  EXPECT_EQ(manager.GetFreeIRQs(), (std::vector<int>{1, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15}));
  // Held: 1 (modem), 2 (timer or system resources); 4 cascades.
  EXPECT_EQ(manager.GetFreeDMAChannels(), (std::vector<int>{0, 3, 5, 6, 7}));
}

INSTANTIATE_TEST_SUITE_P(Releases, DeviceInventory, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

TEST(DeviceInventoryWithout, NoSourceAnswersEmpty) {
  hostkit_test::UseFreshMachine(Release::WinXP)->modules().erase("setupapi.dll");
  DeviceManager manager;
  EXPECT_TRUE(manager.GetDevices(Hostkit::DEVICE_CLASS_NETWORK).empty());
  EXPECT_TRUE(manager.GetFreeIRQs().empty());  // no resource map
  hostkit_test::UseFreshMachine(Release::Win98);
  EXPECT_TRUE(manager.GetFreeDMAChannels().empty());  // no Config Manager view
}

}  // namespace
