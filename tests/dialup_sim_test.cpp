// DialUp on the simulated machine, where key deletion works as on Windows 9x and started
// programs are recorded: the two removal passes, and which component installers run.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "hostkit/dialup.h"
#include "hostkit/regwiz.h"
#include "support/sim_machine.h"

namespace {

using hostkit_test::Release;
using hostkit_test::UseFreshMachine;
using Strings = std::vector<std::string>;

constexpr const char* kRootNet = "Enum\\Root\\Net";
constexpr const char* kNetClass = "System\\CurrentControlSet\\Services\\Class\\Net";
constexpr const char* kComponents =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Setup\\OptionalComponents\\";
const std::string kRna = "rundll.exe rnasetup.dll,InstallOptionalComponent RNA";
const std::string kVpn = "rundll.exe rnasetup.dll,InstallOptionalComponent VPN";

class DialUpSim : public testing::Test {
 protected:
  void TearDown() override { Hostkit::sim::ActivateMachine(nullptr); }

  // A root-enumerated device with its own class entry; an empty `driverFile` leaves out both
  // "Driver" and the class entry. Bindings are value names of the device's "Bindings" key.
  void AddDevice(const std::string& name, const char* driverFile, const Strings& bindings) {
    const std::string device = std::string(kRootNet) + "\\" + name;
    ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, device.c_str()));
    if (*driverFile != '\0') {
      const std::string entry = std::string(kNetClass) + "\\" + name;
      ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, entry.c_str()));
      ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, entry.c_str(), "DeviceVxDs", driverFile));
      ASSERT_TRUE(
          reg_.SetKeyVal(HKEY_LOCAL_MACHINE, device.c_str(), "Driver", ("Net\\" + name).c_str()));
    }
    const std::string binding = device + "\\Bindings";
    for (const std::string& protocol : bindings) {
      ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, binding.c_str()));
      ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, binding.c_str(), protocol.c_str(), ""));
    }
  }
  void AddComponent(const std::string& name) {
    const std::string key = kComponents + name;
    ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, key.c_str()));
    ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, key.c_str(), "Installed", "1"));
  }
  std::string Installed(const std::string& name) {
    std::string value;
    reg_.GetKeyVal(HKEY_LOCAL_MACHINE, (kComponents + name).c_str(), "Installed", value);
    return value;
  }
  Strings SubKeys(const char* path) {
    Strings names;
    reg_.GetSubKeyNames(HKEY_LOCAL_MACHINE, path, names);
    return names;
  }

  Hostkit::RegWiz reg_;
};

TEST_F(DialUpSim, EachPassRemovesOneDeviceAndTheSecondAlsoRemovesOtherDrivers) {
  UseFreshMachine(Release::Win98);
  AddDevice("0000", "pppmac.vxd", {"NETBEUI\\0000", "MSTCP\\0000"});
  AddDevice("0001", "pppmac.vxd", {});
  AddDevice("0002", "netpptp.sys", {"MSTCP\\0002"});
  AddDevice("0003", "pppmac.vxd", {"NETBEUI\\0003"});
  AddDevice("0004", "", {});
  Hostkit::DialUp dialup;
  ASSERT_EQ(dialup.NumMicrosoftDialupAdapters(), 3);
  // The first pass takes the first unbound dial-up adapter; the second the bound VPN adapter,
  // because its driver is not the dial-up driver.
  dialup.RemoveDialupAdaptersNotBoundToTcpip();
  EXPECT_EQ(SubKeys(kRootNet), (Strings{"0000", "0003", "0004"}));
  EXPECT_EQ(SubKeys(kNetClass), (Strings{"0000", "0003"}));
  EXPECT_FALSE(dialup.IsMicrosoftVpnInstalled());
  // Then the other unbound dial-up adapter, and the device without a driver: its class entry
  // cannot be named, and the class tree stays.
  dialup.RemoveDialupAdaptersNotBoundToTcpip();
  EXPECT_EQ(SubKeys(kRootNet), Strings{"0000"});
  EXPECT_EQ(SubKeys(kNetClass), Strings{"0000"});
  dialup.RemoveDialupAdaptersNotBoundToTcpip();
  EXPECT_EQ(SubKeys(kRootNet), Strings{"0000"});
  EXPECT_EQ(dialup.NumMicrosoftDialupAdapters(), 1);
}

TEST_F(DialUpSim, InstallersRunForWhatIsMissingOnWindows98AndMeOnly) {
  struct Case {
    Release release;
    bool withAdapter;
    int wanted;
    bool result;
    Strings started;
  };
  for (const Case& c : std::vector<Case>{
           {Release::Win98, true, 1, true, {}},
           {Release::Win98, true, 2, true, {kVpn}},
           {Release::WinME, false, 1, true, {kRna}},
           {Release::WinME, false, 2, true, {kRna, kVpn}},
           {Release::Win98, false, 2, true, {kRna, kVpn}},
           {Release::Win95, false, 2, false, {}},
           {Release::WinXP, false, 2, false, {}},
       }) {
    SCOPED_TRACE(std::to_string(static_cast<int>(c.release)) + " wanted " +
                 std::to_string(c.wanted) + (c.withAdapter ? " with an adapter" : ""));
    auto machine = UseFreshMachine(c.release);
    AddComponent("RNA");
    AddComponent("VPN");
    if (c.withAdapter) {
      AddDevice("0000", "pppmac.vxd", {"MSTCP\\0000"});
    }
    EXPECT_EQ(Hostkit::DialUp().InstallDialUpAdapters(c.wanted), c.result);
    EXPECT_EQ(machine->startedPrograms(), c.started);
    // An installer runs only after its component was marked as not installed.
    const auto ran = [&](const std::string& line) {
      return std::find(c.started.begin(), c.started.end(), line) != c.started.end();
    };
    EXPECT_EQ(Installed("RNA"), ran(kRna) ? "0" : "1");
    EXPECT_EQ(Installed("VPN"), ran(kVpn) ? "0" : "1");
  }
}

TEST_F(DialUpSim, AnEmptyRegistryGetsNoKeys) {
  auto machine = UseFreshMachine(Release::Win98);
  Hostkit::DialUp dialup;
  EXPECT_FALSE(dialup.EnableDialUp(Hostkit::wstring()));
  EXPECT_TRUE(dialup.InstallVpn());  // a component without "Installed" is not marked
  EXPECT_EQ(machine->startedPrograms(), Strings{kVpn});
  // Writes never create their key.
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_LOCAL_MACHINE, "Software"));
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_CONFIG, "Software"));
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, "Software"));
}

}  // namespace
