// RasInterface on every release's simulated Remote Access: the phonebook, dialling that
// connects, fails or runs out of time (in virtual time), hanging up, devices, error texts, the
// record-size fallback of the older releases, and a machine without rasapi32.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostkit/ras_interface.h"
#include "hostkit/sim/profile.h"
#include "platform/modules.h"
#include "platform/rasapi32.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::RasInterface;
using hostkit_test::Release;
namespace ras = Hostkit::platform::ras;

constexpr unsigned long kBusy = 676;
constexpr unsigned long kTimeout = 1460;

class RasOnRelease : public hostkit_test::SimPerRelease {
 protected:
  void SetUp() override {
    SimPerRelease::SetUp();
    auto& state = machine_->ras();
    state.devices = {{"Standard 56000 bps Modem", "modem"},
                     {"ISDN Adapter", "ISDN"},
                     {"WAN Miniport (PPTP)", "vpn"},
                     {"X.25 PAD", "pad"}};
    state.entries["ISP"] = {"020", "5550100", 44, "modem", "Standard 56000 bps Modem", 3000, 0};
    state.entries["Busy ISP"] = {"", "5550199", 1, "modem", "Standard 56000 bps Modem", 500, kBusy};
    state.entries["Slow ISP"] = {"", "5550123", 1, "modem", "Standard 56000 bps Modem", 60000, 0};
  }
};

TEST_P(RasOnRelease, ListsAndReadsEntries) {
  RasInterface rasInterface;
  EXPECT_EQ(rasInterface.GetEntries(), (std::vector<std::string>{"Busy ISP", "ISP", "Slow ISP"}));
  RasInterface::EntryInfo info;
  ASSERT_TRUE(rasInterface.GetEntry(Hostkit::wstring(u"ISP"), info));
  EXPECT_EQ(info.name, "ISP");
  EXPECT_EQ(info.areaCode, "020");
  EXPECT_EQ(info.phoneNumber, "5550100");
  EXPECT_EQ(info.countryCode, 44UL);
  EXPECT_EQ(info.deviceName, "Standard 56000 bps Modem");
  EXPECT_FALSE(rasInterface.GetEntry("Nobody", info));
  EXPECT_EQ(rasInterface.GetLastRasError(), ras::kCannotFindEntry);
}

TEST_P(RasOnRelease, CreatesFromTemplateAndDeletes) {
  RasInterface rasInterface;
  ASSERT_TRUE(rasInterface.CreateEntry("Second ISP", "ISP", "5550111"));
  RasInterface::EntryInfo info;
  ASSERT_TRUE(rasInterface.GetEntry("Second ISP", info));
  EXPECT_EQ(info.phoneNumber, "5550111");
  EXPECT_EQ(info.areaCode, "020");  // the rest comes from the template
  EXPECT_EQ(info.deviceName, "Standard 56000 bps Modem");
  EXPECT_FALSE(rasInterface.CreateEntry("Second ISP", "ISP", ""));
  EXPECT_EQ(rasInterface.GetLastRasError(), ras::kAlreadyExists);
  EXPECT_FALSE(rasInterface.CreateEntry("Third", "No template", ""));
  EXPECT_TRUE(rasInterface.DeleteEntry(Hostkit::wstring(u"Second ISP")));
  EXPECT_FALSE(rasInterface.DeleteEntry("Second ISP"));
  EXPECT_EQ(rasInterface.GetEntries().size(), 3U);
}

TEST_P(RasOnRelease, DialConnectsAndHangsUp) {
  RasInterface rasInterface;
  ASSERT_TRUE(rasInterface.Dial("ISP", 10000));
  EXPECT_EQ(rasInterface.GetLastRasError(), 0UL);
  auto connections = rasInterface.GetConnections();
  ASSERT_EQ(connections.size(), 1U);
  EXPECT_EQ(connections[0].entry, "ISP");
  EXPECT_TRUE(connections[0].connected);
  EXPECT_TRUE(rasInterface.HangUp(Hostkit::wstring(u"ISP")));
  EXPECT_TRUE(rasInterface.GetConnections().empty());
  EXPECT_FALSE(rasInterface.HangUp("ISP"));
}

struct FailedDial {
  const char* entry;
  unsigned long timeout;
  unsigned long error;
};

TEST_P(RasOnRelease, FailedDialsAreHungUpWithTheirReason) {
  for (const FailedDial& dial :
       {FailedDial{"Busy ISP", 10000, kBusy}, FailedDial{"Slow ISP", 5000, kTimeout},
        FailedDial{"ISP", 1000, kTimeout}, FailedDial{"Nobody", 10000, ras::kCannotFindEntry}}) {
    RasInterface rasInterface;
    EXPECT_FALSE(rasInterface.Dial(dial.entry, dial.timeout)) << dial.entry;
    EXPECT_EQ(rasInterface.GetLastRasError(), dial.error) << dial.entry;
    EXPECT_TRUE(machine_->ras().connections.empty()) << dial.entry;
  }
  RasInterface rasInterface;
  EXPECT_EQ(rasInterface.GetErrorText(kBusy), "The phone line is busy.");
  EXPECT_EQ(rasInterface.GetErrorText(12345), "");
}

TEST_P(RasOnRelease, DevicesByType) {
  const auto devices = RasInterface().GetDevices();
  ASSERT_EQ(devices.size(), 4U);
  EXPECT_EQ(devices[0].type, RasInterface::DEVICE_TYPE_MODEM);
  EXPECT_EQ(devices[1].type, RasInterface::DEVICE_TYPE_ISDN);
  EXPECT_EQ(devices[2].type, RasInterface::DEVICE_TYPE_VPN);
  EXPECT_EQ(devices[3].type, RasInterface::DEVICE_TYPE_OTHER);
  EXPECT_EQ(devices[1].name, "ISDN Adapter");
  EXPECT_EQ(devices[1].typeName, "ISDN");
}

// The newest records are refused by older releases, so that only the fallback reaches them.
TEST_P(RasOnRelease, OlderReleasesRefuseNewerRecords) {
  HMODULE module = Hostkit::platform::LoadLibraryA(ras::kModule);
  auto enumEntries = Hostkit::platform::ProcAs<ras::EnumEntriesA>(
      Hostkit::platform::GetProcAddress(module, "RasEnumEntriesA"));
  auto enumConnections = Hostkit::platform::ProcAs<ras::EnumConnectionsA>(
      Hostkit::platform::GetProcAddress(module, "RasEnumConnectionsA"));
  ASSERT_NE(enumEntries, nullptr);
  std::vector<ras::EntryName> names(3);
  names[0].dwSize = sizeof(ras::EntryName);
  DWORD bytes = sizeof(ras::EntryName) * 3;
  DWORD count = 0;
  const bool nt5 = GetParam() == Release::Win2000 || GetParam() == Release::WinXP;
  EXPECT_EQ(enumEntries(nullptr, nullptr, names.data(), &bytes, &count),
            nt5 ? ras::kSuccess : ras::kInvalidSize);
  ras::Connection connection{};
  connection.dwSize = sizeof connection;
  bytes = sizeof connection;
  EXPECT_EQ(enumConnections(&connection, &bytes, &count),
            GetParam() == Release::WinXP ? ras::kSuccess : ras::kInvalidSize);
  connection.dwSize = ras::kConnectionSizes.back();
  EXPECT_EQ(enumConnections(&connection, &bytes, &count), ras::kSuccess);
  Hostkit::platform::FreeLibrary(module);
}

INSTANTIATE_TEST_SUITE_P(Releases, RasOnRelease, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

TEST(RasWithout, EveryOperationFailsWithoutAnError) {
  auto machine = hostkit_test::UseFreshMachine(Release::Win95);
  machine->ras().entries["ISP"] = {};
  machine->modules().erase("rasapi32.dll");
  RasInterface rasInterface;
  EXPECT_TRUE(rasInterface.GetEntries().empty());
  EXPECT_FALSE(rasInterface.Dial("ISP", 1000));
  EXPECT_FALSE(rasInterface.HangUp("ISP"));
  EXPECT_TRUE(rasInterface.GetDevices().empty());
  EXPECT_EQ(rasInterface.GetErrorText(676), "");
  EXPECT_EQ(rasInterface.GetLastRasError(), 0UL);
}

TEST(RasProfile, ReadsPhonebookDevicesAndOutcomes) {
  std::string error;
  auto machine = Hostkit::sim::LoadMachineProfileText(
      R"({ "release": "win98", "ras": {
            "devices": [ { "name": "Modem", "type": "modem" } ],
            "entries": { "Net": { "phone": "123", "delayMs": 100, "error": 678 } } } })",
      "ras.json", {}, {}, error);
  ASSERT_NE(machine, nullptr) << error;
  Hostkit::sim::ActivateMachine(machine);
  RasInterface rasInterface;
  EXPECT_EQ(rasInterface.GetDevices().size(), 1U);
  EXPECT_FALSE(rasInterface.Dial("Net", 1000));
  EXPECT_EQ(rasInterface.GetLastRasError(), 678UL);
  EXPECT_EQ(Hostkit::sim::LoadMachineProfileText(
                R"({ "release": "win98", "ras": { "entries": { "Net": { "phone": 5 } } } })",
                "bad.json", {}, {}, error),
            nullptr);
  EXPECT_EQ(error.find("bad.json:1: an entry has the strings \"phone\""), 0U) << error;
}

}  // namespace
