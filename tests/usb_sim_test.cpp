// USB ports on simulated machines: the walk over host controllers and hubs through the USB
// device interface, its requests and buffer sizes, the profile form of a USB tree, and the
// device inventory that answers on Windows 95 and NT 4.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "hostkit/sim/machine.h"
#include "hostkit/sim/profile.h"
#include "hostkit/usb.h"
#include "inventory/usb_impl.h"
#include "platform/devices.h"
#include "platform/handles.h"
#include "platform/system_info.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::Usb;
using Hostkit::sim::Machine;
using Hostkit::sim::Release;
using Hostkit::sim::SimUsb;
using Hostkit::sim::SimUsbPort;
namespace platform = Hostkit::platform;

constexpr const char* kRootHub = "USB#ROOT_HUB#4&2D3A5C&0";
constexpr const char* kExternalHub = "USB#VID_0409&PID_0059#5&1F2E&0&2";
constexpr const char* kHubDriverKey = "{36FC9E60-C465-11CF-8056-444553540000}\\0002";

// A root hub with two ports, the second holding a four-port hub with one printer.
std::string TreeProfile(Release release) {
  return std::string(R"({ "release": ")") + Hostkit::sim::ReleaseName(release) + R"(",
  "devices": {
    "USBFDO-0": { "usb": { "rootHub": "USB#ROOT_HUB#4&2D3A5C&0",
                           "driverKey": "{36FC9E60-C465-11CF-8056-444553540000}\\0000" } },
    "USBPDO-0": { "usb": { "ports": [ "empty",
        { "device": "0409:0059", "driverKey": "{36FC9E60-C465-11CF-8056-444553540000}\\0002",
          "hub": "USB#VID_0409&PID_0059#5&1F2E&0&2" } ] } },
    "USBPDO-1": { "usb": { "ports": [ "empty", "empty",
        { "device": "04B8:0005", "driverKey": "{4D36E979-E325-11CE-BFC1-08002BE10318}\\0001" },
        "empty" ] } }
  },
  "dosDevices": { "HCD0": [ "\\Device\\USBFDO-0" ],
                  "USB#ROOT_HUB#4&2D3A5C&0": [ "\\Device\\USBPDO-0" ],
                  "USB#VID_0409&PID_0059#5&1F2E&0&2": [ "\\Device\\USBPDO-1" ] }
})";
}

std::shared_ptr<Machine> UseProfile(const std::string& text,
                                    const std::map<std::string, std::string>& registry = {}) {
  std::string error;
  auto machine = Hostkit::sim::LoadMachineProfileText(text, "usb.json", registry, {}, error);
  EXPECT_NE(machine, nullptr) << error;
  Hostkit::sim::ActivateMachine(machine);
  return machine;
}

std::shared_ptr<Machine> UseTree(Release release) { return UseProfile(TreeProfile(release)); }

// Adds a device with a USB role and the DOS device name that links to it.
void AddUsbDevice(Machine& machine, const std::string& link, const std::string& device,
                  SimUsb usb) {
  machine.devices()[device].usb = std::move(usb);
  machine.dosDevices()[link] = {"\\Device\\" + device};
}

SimUsb Controller(const std::string& rootHub) {
  SimUsb usb;
  usb.role = SimUsb::Role::HostController;
  usb.rootHub = rootHub;
  return usb;
}

SimUsb Hub(std::vector<SimUsbPort> ports) {
  SimUsb usb;
  usb.role = SimUsb::Role::Hub;
  usb.ports = std::move(ports);
  return usb;
}

SimUsbPort Port(DWORD status, bool queryFails = false, const std::string& hub = "",
                const std::string& driverKey = "") {
  SimUsbPort port;
  port.status = status;
  port.queryFails = queryFails;
  port.hub = hub;
  port.driverKey = driverKey;
  return port;
}

class UsbPerRelease : public hostkit_test::SimPerRelease {};

TEST_P(UsbPerRelease, ExternalHubPortsCountOnWalkingFamiliesOnly) {
  UseTree(GetParam());
  Usb usb;
  const bool noInterface = GetParam() == Release::Win95 || GetParam() == Release::WinNT4;
  if (noInterface) {
    // Whatever is attached, these releases do not walk: the device inventory answers, and it
    // finds neither Configuration Manager entries nor running USB services here.
    EXPECT_EQ(usb.NumberOfPortsExisting(), -1);
    EXPECT_EQ(usb.NumberOfPortsOpen(), -1);
    EXPECT_FALSE(usb.DoesSupportUsb());
    return;
  }
  EXPECT_EQ(usb.NumberOfPortsExisting(), 6);
  EXPECT_EQ(usb.NumberOfPortsOpen(), 4);  // the hub and the printer are in use
  EXPECT_TRUE(usb.DoesSupportUsb());
  const Hostkit::UsbWalkResult walk = Hostkit::WalkUsbControllers();
  EXPECT_EQ(walk.portsInUse, 2);
  EXPECT_EQ(walk.hubLines,
            std::vector<std::string>{std::string("[Port2] DeviceConnected :  ") + kHubDriverKey});
}

INSTANTIATE_TEST_SUITE_P(Releases, UsbPerRelease, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

TEST(UsbSim, EveryControllerNumberIsTriedAndFailuresAreSkipped) {
  auto machine = hostkit_test::UseFreshMachine(Release::Win98);
  EXPECT_EQ(Usb().NumberOfPortsExisting(), 0);
  EXPECT_FALSE(Usb().DoesSupportUsb());

  // HCD1 and HCD3 only, with a gap before, between and after.
  AddUsbDevice(*machine, "HCD1", "USBFDO-1", Controller("HUB1"));
  AddUsbDevice(*machine, "HUB1", "USBPDO-1", Hub({Port(1), Port(0)}));
  AddUsbDevice(*machine, "HCD3", "USBFDO-3", Controller("HUB3"));
  // A failed query is not counted; a failure state is seen but not in use.
  AddUsbDevice(*machine, "HUB3", "USBPDO-3", Hub({Port(1, true), Port(5), Port(2), Port(1)}));
  EXPECT_EQ(Usb().NumberOfPortsExisting(), 5);
  EXPECT_EQ(Usb().NumberOfPortsOpen(), 3);

  // Controllers whose root hub cannot be named or opened, and one that is not there at all.
  AddUsbDevice(*machine, "HCD0", "USBFDO-0", Controller(""));
  AddUsbDevice(*machine, "HCD9", "USBFDO-9", Controller("MISSING#HUB"));
  machine->dosDevices()["HCD5"] = {"\\Device\\Nothing"};
  EXPECT_EQ(Usb().NumberOfPortsExisting(), 5);

  // A hub port naming a hub that does not open still counts as a port in use.
  machine->devices()["USBPDO-1"].usb.ports[1] = Port(1, false, "GONE#HUB", "key");
  EXPECT_EQ(Usb().NumberOfPortsExisting(), 5);
  EXPECT_EQ(Usb().NumberOfPortsOpen(), 2);

  // A hub naming itself (a faulty driver) is followed only to the depth USB allows.
  machine->devices()["USBPDO-1"].usb.ports[1] = Port(1, false, "HUB1");
  EXPECT_EQ(Usb().NumberOfPortsExisting(), 2 * 7 + 3);
}

// The requests the walk sends, with the sizes of their buffers.
TEST(UsbSim, RequestsUseTheFixedBuffersAndTwoStepNames) {
  auto machine = UseTree(Release::WinXP);
  ASSERT_NE(machine, nullptr);
  machine->deviceRequests().clear();
  EXPECT_EQ(Usb().NumberOfPortsExisting(), 6);

  std::map<std::string, std::vector<DWORD>> sizes;  // "device code" to output sizes in order
  for (const auto& request : machine->deviceRequests()) {
    char code[16];
    std::snprintf(code, sizeof code, " %06X", static_cast<unsigned>(request.controlCode));
    sizes[request.device + code].push_back(request.outSize);
    if (request.controlCode != 0x220408 && request.controlCode != 0x220424) {
      EXPECT_EQ(request.inSize, request.outSize) << "port requests send their record";
    }
  }
  auto nameSize = [](std::size_t header, const std::string& name) {
    return static_cast<DWORD>(header + 2 * (name.size() + 1));
  };
  const std::string controllerKey = "{36FC9E60-C465-11CF-8056-444553540000}\\0000";
  const std::string printerKey = "{4D36E979-E325-11CE-BFC1-08002BE10318}\\0001";
  const std::map<std::string, std::vector<DWORD>> expected = {
      {"USBFDO-0 220424", {6, nameSize(4, controllerKey)}},
      {"USBFDO-0 220408", {6, nameSize(4, kRootHub)}},
      {"USBPDO-0 220408", {76}},
      {"USBPDO-0 22040C", {365, 365}},
      {"USBPDO-0 220420", {10, nameSize(8, kHubDriverKey)}},
      {"USBPDO-0 220414", {10, nameSize(8, kExternalHub)}},
      {"USBPDO-1 220408", {76}},
      {"USBPDO-1 22040C", {365, 365, 365, 365}},
      {"USBPDO-1 220420", {10, nameSize(8, printerKey)}},
  };
  EXPECT_EQ(sizes, expected);
}

// The simulated stack answers the records of the USB device interface byte for byte (packed:
// node information 76 bytes, port count at 6; connection information with the vendor at 12,
// DeviceIsHub at 24 and the state at 31).
TEST(UsbSim, StackAnswersTheInterfaceRecords) {
  auto machine = UseTree(Release::Win2000);
  ASSERT_NE(machine, nullptr);
  auto dword = [](const std::vector<BYTE>& record, std::size_t at) {
    return record[at] | record[at + 1] << 8 | record[at + 2] << 16 | record[at + 3] << 24;
  };
  // The two-step name requests are pinned by their sizes above; here the records' layout.
  DWORD returned = 0;
  HANDLE hub = platform::CreateFileA((std::string("\\\\.\\") + kRootHub).c_str(), GENERIC_WRITE,
                                     FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(hub, INVALID_HANDLE_VALUE);
  std::vector<BYTE> node(76, 0);
  ASSERT_TRUE(
      platform::DeviceIoControl(hub, 0x220408, nullptr, 0, node.data(), 76, &returned, nullptr));
  EXPECT_EQ(returned, 76U);
  EXPECT_EQ(dword(node, 0), 0U);  // a hub, not a composite device
  EXPECT_EQ(node[5], 0x29);       // hub descriptor
  EXPECT_EQ(node[6], 2);          // ports

  std::vector<BYTE> connection(365, 0);
  connection[0] = 2;
  ASSERT_TRUE(platform::DeviceIoControl(hub, 0x22040C, connection.data(), 365, connection.data(),
                                        365, &returned, nullptr));
  EXPECT_EQ(dword(connection, 0), 2U);
  EXPECT_EQ(connection[4], 18);                             // device descriptor length
  EXPECT_EQ(connection[12] | connection[13] << 8, 0x0409);  // vendor
  EXPECT_EQ(connection[24], 1);                             // DeviceIsHub
  EXPECT_EQ(dword(connection, 31), 1U);                     // DeviceConnected
  platform::CloseHandle(hub);
}

TEST(UsbSim, ProfileTreeSavesAndLoadsAgain) {
  auto machine = UseTree(Release::WinME);
  ASSERT_NE(machine, nullptr);
  SimUsbPort& odd = machine->devices()["USBPDO-1"].usb.ports[3];
  odd.status = 4;
  odd.queryFails = true;
  machine->devices()["USBPDO-1"].usb.ports[0].queryFails = true;
  const auto folder = std::filesystem::temp_directory_path() / "hostkit-usb-profile";
  std::filesystem::create_directories(folder);
  std::string error;
  ASSERT_TRUE(Hostkit::sim::SaveMachineProfile(*machine, folder / "m.json", error)) << error;
  auto again = Hostkit::sim::LoadMachineProfile(folder / "m.json", error);
  std::filesystem::remove_all(folder);
  ASSERT_NE(again, nullptr) << error;
  // Every USB field of every device, as one text per device.
  auto usbText = [](Machine& m) {
    std::map<std::string, std::string> texts;
    for (const auto& [name, device] : m.devices()) {
      const SimUsb& u = device.usb;
      std::string& text = texts[name];
      text = std::to_string(static_cast<int>(u.role)) + u.rootHub + "|" + u.driverKey;
      for (const SimUsbPort& p : u.ports) {
        text += "|" + std::to_string(p.status) + std::to_string(p.queryFails) + ":" +
                std::to_string(p.vendorId) + ":" + std::to_string(p.productId) + ":" + p.driverKey +
                ":" + p.hub;
      }
    }
    return texts;
  };
  EXPECT_EQ(usbText(*again), usbText(*machine));
  Hostkit::sim::ActivateMachine(again);
  EXPECT_EQ(Usb().NumberOfPortsExisting(), 4);
  EXPECT_EQ(Usb().NumberOfPortsOpen(), 2);

  // Mistakes are named with the profile's line.
  const std::string bad =
      "{ \"release\": \"winxp\",\n  \"devices\": { \"H\": { \"usb\": {\n"
      "    \"ports\": [ \"empty\", { \"device\": \"12345\" } ] } } } }";
  EXPECT_EQ(Hostkit::sim::LoadMachineProfileText(bad, "bad.json", {}, {}, error), nullptr);
  EXPECT_EQ(error.rfind("bad.json:3: ", 0), 0U) << error;
  EXPECT_NE(error.find("port 2"), std::string::npos) << error;
}

// Windows 95 and NT 4 ask the device inventory, which reads what the family records of present
// devices.
TEST(UsbSim, DeviceInventoryAnswersOnWindows95AndNt4) {
  // An installed USB controller, and a present network card; the controller is present only
  // when the Configuration Manager lists it too.
  const std::string installed =
      "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\Enum\\PCI\\VEN_8086&DEV_7112\\BUS_00&DEV_07]\r\n"
      "\"Class\"=\"USB\"\r\n\r\n[HKEY_LOCAL_MACHINE\\Enum\\PCI\\VEN_10B7&DEV_9200\\4&1]\r\n"
      "\"Class\"=\"Net\"\r\n\r\n[HKEY_DYN_DATA\\Config Manager\\Enum\\C1000]\r\n"
      "\"HardWareKey\"=\"PCI\\\\VEN_10B7&DEV_9200\\\\4&1\"\r\n";
  const std::string present =
      "[HKEY_DYN_DATA\\Config Manager\\Enum\\C1001]\r\n"
      "\"HardWareKey\"=\"PCI\\\\VEN_8086&DEV_7112\\\\BUS_00&DEV_07\"\r\n";
  const std::string profile = R"({ "release": "win95", "registry": [ "usb.reg" ] })";
  UseProfile(profile, {{"usb.reg", installed}});
  EXPECT_FALSE(Usb().DoesSupportUsb());
  UseProfile(profile, {{"usb.reg", installed + present}});
  EXPECT_TRUE(Usb().DoesSupportUsb());
  EXPECT_EQ(Usb().NumberOfPortsExisting(), -1);

  auto nt4 = hostkit_test::UseFreshMachine(Release::WinNT4);
  nt4->services()["usbd"].state = SERVICE_STOPPED;
  EXPECT_FALSE(Usb().DoesSupportUsb());
  nt4->services()["OpenHCI"].state = SERVICE_RUNNING;
  EXPECT_TRUE(Usb().DoesSupportUsb());
  EXPECT_EQ(Usb().NumberOfPortsOpen(), -1);
}

}  // namespace
