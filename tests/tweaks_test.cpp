// The tweaks on each release's network fixture: the broadband tuning's writes compared key by
// key with each family's rules, the LAN switch over every place it writes, the 9x sharing
// switches and the set-up source location with its list of recent install locations. Every key
// a test touches is watched and put back, so the tests also run in Wine's registry.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/broadband_tweak.h"
#include "hostkit/cab_files.h"
#include "hostkit/file_and_print_sharing.h"
#include "hostkit/lan_switch.h"
#include "hostkit/regwiz.h"
#include "hostkit/strings.h"
#include "support/network_fixture.h"
#include "support/registry_import.h"
#include "support/saved_key.h"
#include "support/test_machine.h"
#include "support/watched_key.h"

namespace {

using hostkit_test::OnRealWindows;
using hostkit_test::PerRelease;
using hostkit_test::Release;
using hostkit_test::SavedKey;
using hostkit_test::WatchedKey;

constexpr const char* kSettings = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

// Registry text applied on top of what the test runs on; every key it names is put back after.
class Overlay {
 public:
  ~Overlay() { hostkit_test::UndoInReverse(saved_); }

  void Apply(const std::string& text) {
    std::vector<Hostkit::regfile::Operation> operations;
    std::string error;
    ASSERT_TRUE(
        Hostkit::regfile::ParseRegFile("REGEDIT4\r\n\r\n" + text, "overlay.reg", operations, error))
        << error;
    ASSERT_TRUE(hostkit_test::ApplyWithUndo(operations, "overlay.reg", saved_, error)) << error;
  }

 private:
  std::vector<std::unique_ptr<SavedKey>> saved_;
};

// ---- broadband tuning ----

// Known starting points, and two places the tuning must not write: a key of the literal path
// without "System\", and a card whose service has no bus number.
const char* const kTuningOverlay =
    "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings]\r\n"
    "\"MaxConnectionsPerServer\"=-\r\n\"MaxConnectionsPer1_0Server\"=-\r\n"
    "[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\Tcpip\\Parameters]\r\n"
    "\"TcpWindowSize\"=-\r\n\"GlobalMaxTcpWindowSize\"=-\r\n\"Tcp1323Opts\"=-\r\n"
    "[HKEY_LOCAL_MACHINE\\CurrentControlSet\\Services\\Tcpip\\Parameters]\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\NetworkCards\\9]\r\n"
    "\"ServiceName\"=\"HostkitNoBus\"\r\n"
    "[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\HostkitNoBus\\Parameters\\Tcpip]"
    "\r\n";

// The writes below "System\CurrentControlSet\Services", and those below the literal
// "CurrentControlSet" with that prefix, sorted.
std::vector<std::string> ExpectedTuning(Release release, const std::vector<std::string>& ifs) {
  const std::string window = release == Release::Win95 ? "64240" : "256960";
  switch (release) {
    case Release::Win95:
    case Release::Win98:
    case Release::WinME:
      // Only the 3Com card is Ethernet, enabled and bound: not the disabled Realtek, not the
      // unbound NE2000, not the dial-up adapter.
      return {"Class\\NetTrans\\0000|MaxMTU=\"1500\"",
              "VxD\\MSTCP|DefaultRcvWindow=\"" + window + "\""};
    case Release::WinNT4:
      // NE20001 has a bus number but no TCP/IP key, which the tuning does not create.
      return {"E100B1\\Parameters\\Tcpip|MTU=dword:1500",
              "El90x1\\Parameters\\Tcpip|MTU=dword:1500",
              "Tcpip\\Parameters|TcpWindowSize=dword:64240"};
    case Release::Win2000: {
      std::vector<std::string> expected = {
          "CurrentControlSet\\Services\\Tcpip\\Parameters|EnablePMTUDiscovery=\"1\"",
          "Tcpip\\Parameters|GlobalMaxTcpWindowSize=dword:372300",
          "Tcpip\\Parameters|Tcp1323Opts=dword:3", "Tcpip\\Parameters|TcpWindowSize=dword:372300"};
      for (const std::string& name : ifs) {
        expected.push_back("Tcpip\\Parameters\\Interfaces\\" + name + "|MTU=dword:1500");
      }
      std::sort(expected.begin(), expected.end());
      return expected;
    }
    default:
      return {};
  }
}

class BroadbandTuning : public PerRelease {};

TEST_P(BroadbandTuning, WritesExactlyTheFamilysValues) {
  hostkit_test::NetworkFixture fixture;
  std::string error;
  ASSERT_TRUE(fixture.Load(GetParam(), error)) << error;
  Overlay overlay;
  overlay.Apply(kTuningOverlay);
  std::vector<std::string> interfaces;
  Hostkit::RegWiz().GetSubKeyNames(
      HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces",
      interfaces);
  if (GetParam() == Release::Win2000 && !OnRealWindows()) {
    ASSERT_EQ(interfaces.size(), 3U);
  }
  WatchedKey user(HKEY_CURRENT_USER, kSettings);
  WatchedKey literal(HKEY_LOCAL_MACHINE, "CurrentControlSet");
  WatchedKey system(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\Services");

  Hostkit::BroadbandPerformanceTweak tweak;
  EXPECT_FALSE(tweak.TweakForPPPOA());
  EXPECT_FALSE(tweak.TweakForPPPOE());
  EXPECT_TRUE(user.Changes().empty() && literal.Changes().empty() && system.Changes().empty());

  Hostkit::BroadbandPerformanceTweak copy;
  copy = tweak;
  EXPECT_TRUE(copy.TweakForPureEthernet());
  std::vector<std::string> written = system.Changes();
  for (const std::string& change : literal.Changes()) {
    written.push_back("CurrentControlSet\\" + change);
  }
  std::sort(written.begin(), written.end());
  if (GetParam() == Release::WinXP) {
    EXPECT_EQ(user.Changes(), std::vector<std::string>{});
  } else {
    EXPECT_EQ(user.Changes(), (std::vector<std::string>{"|MaxConnectionsPer1_0Server=dword:4",
                                                        "|MaxConnectionsPerServer=dword:8"}));
  }
  EXPECT_EQ(written, ExpectedTuning(GetParam(), interfaces));
}

INSTANTIATE_TEST_SUITE_P(AllReleases, BroadbandTuning,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

// ---- LAN switch ----

// Hardware profiles and configurations with and without their Internet Settings, and a control
// set without hardware profiles whose own Internet Settings must stay untouched.
const char* const kLanOverlay =
    "[HKEY_LOCAL_MACHINE\\Config\\0001\\Software\\Microsoft\\windows\\CurrentVersion\\Internet "
    "Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\Config\\0002\\Software\\Microsoft]\r\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\HostkitSet\\Hardware Profiles\\0001\\Software\\Microsoft\\"
    "Windows\\CurrentVersion\\Internet Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\HostkitSet\\Hardware Profiles\\0002]\r\n"
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\HostkitPlain\\Software\\Microsoft\\Windows\\CurrentVersion\\"
    "Internet Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings]\r\n"
    "\"EnableAutodial\"=-\r\n"
    "[HKEY_USERS\\.Default\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings]\r\n"
    "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings]\r\n"
    "\"EnableAutodial\"=-\r\n";

class LanSwitch : public PerRelease {};

TEST_P(LanSwitch, WritesEveryPlaceAndReadsTheUserFirst) {
  Overlay overlay;
  overlay.Apply(kLanOverlay);
  WatchedKey config(HKEY_LOCAL_MACHINE, "Config");
  WatchedKey set(HKEY_LOCAL_MACHINE, "SYSTEM\\HostkitSet");
  WatchedKey plain(HKEY_LOCAL_MACHINE, "SYSTEM\\HostkitPlain");
  WatchedKey machine(HKEY_LOCAL_MACHINE, kSettings);
  WatchedKey defaultUser(HKEY_USERS, std::string(".Default\\") + kSettings);
  WatchedKey user(HKEY_CURRENT_USER, kSettings);
  const std::string configKey =
      "0001\\Software\\Microsoft\\windows\\CurrentVersion\\Internet Settings";
  const std::string profileKey = std::string("Hardware Profiles\\0001\\") + kSettings;

  EXPECT_TRUE(Hostkit::IsLANEnabled());  // no value anywhere
  for (const bool enable : {false, true}) {
    ASSERT_TRUE(Hostkit::EnableLAN(enable));
    const std::string autodial = std::string("|EnableAutodial=dword:") + (enable ? "0" : "1");
    EXPECT_EQ(config.Changes(), std::vector<std::string>{configKey + autodial});
    EXPECT_EQ(set.Changes(), std::vector<std::string>{profileKey + autodial});
    EXPECT_EQ(plain.Changes(), std::vector<std::string>{});
    for (const WatchedKey* key : {&machine, &defaultUser, &user}) {
      EXPECT_EQ(key->Changes(), std::vector<std::string>{autodial});
    }
    EXPECT_EQ(Hostkit::IsLANEnabled(), enable);
  }
  // The user's value wins over the machine's; without it the machine's counts.
  Hostkit::RegWiz reg;
  for (const auto& [userValue, machineValue, enabled] : std::vector<std::tuple<int, int, bool>>{
           {0, 1, true}, {1, 0, false}, {-1, 1, false}, {-1, 0, true}}) {
    if (userValue < 0) {
      reg.DeleteKeyVal(HKEY_CURRENT_USER, kSettings, "EnableAutodial");
    } else {
      reg.SetDwordKeyVal(HKEY_CURRENT_USER, kSettings, "EnableAutodial",
                         static_cast<unsigned long>(userValue));
    }
    reg.SetDwordKeyVal(HKEY_LOCAL_MACHINE, kSettings, "EnableAutodial",
                       static_cast<unsigned long>(machineValue));
    EXPECT_EQ(Hostkit::IsLANEnabled(), enabled) << userValue << " " << machineValue;
  }
}

INSTANTIATE_TEST_SUITE_P(AllReleases, LanSwitch, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

// ---- file and print sharing, set-up source location ----

constexpr const char* kVnetsup = "System\\CurrentControlSet\\Services\\VxD\\VNETSUP";
constexpr const char* kSetup = "Software\\Microsoft\\Windows\\CurrentVersion\\Setup";

class SharingAndSetupSource : public PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    if (IsSkipped()) {
      return;
    }
    overlay_.Apply(
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\Network\\SharingHandler]\r\n@=\"msshrui.dll\"\r\n"
        "[-HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\VxD\\VNETSUP]\r\n"
        "[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Setup]\r\n"
        "\"SourcePath\"=\"D:\\\\WIN98\\\\\"\r\n"
        "[-HKEY_LOCAL_MACHINE\\Software\\Tavrin]\r\n[-HKEY_CURRENT_USER\\InstallLocationsMRU]\r\n");
  }

  std::string Read(HKEY root, const char* path, const char* name) {
    std::string text;
    return reg_.GetKeyVal(root, path, name, text) ? text : "(none)";
  }
  std::string Mru() { return Read(HKEY_CURRENT_USER, "InstallLocationsMRU", "MRUList"); }
  std::string Remembered() {
    return Read(HKEY_LOCAL_MACHINE, "Software\\Tavrin\\Dorsel", "OldSourcePath");
  }
  std::string Source() { return Read(HKEY_LOCAL_MACHINE, kSetup, "SourcePath"); }

  Overlay overlay_;
  Hostkit::RegWiz reg_;
};

TEST_P(SharingAndSetupSource, SharingSwitchesOnlyOnWin9x) {
  Hostkit::FileAndPrintSharing sharing;
  // Without the VNETSUP key the switches write nothing and sharing stays on.
  sharing.DisableFileSharing();
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_LOCAL_MACHINE, kVnetsup));
  EXPECT_EQ(sharing.IsFileSharingEnabled(), isWin9x());

  ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, kVnetsup));
  reg_.SetKeyVal(HKEY_LOCAL_MACHINE, kVnetsup, "FileSharing", "no");  // only "No" switches off
  EXPECT_EQ(sharing.IsFileSharingEnabled(), isWin9x());
  EXPECT_EQ(sharing.IsPrintSharingEnabled(), isWin9x());
  sharing.DisablePrintSharing();
  EXPECT_EQ(sharing.IsFileSharingEnabled(), isWin9x());
  EXPECT_FALSE(sharing.IsPrintSharingEnabled());
  sharing.DisableFileSharing();
  EXPECT_FALSE(sharing.IsFileSharingEnabled());
  EXPECT_EQ(Read(HKEY_LOCAL_MACHINE, kVnetsup, "PrintSharing"), isWin9x() ? "No" : "(none)");

  // Switched on but the service not installed: off.
  reg_.SetKeyVal(HKEY_LOCAL_MACHINE, kVnetsup, "FileSharing", "Yes");
  EXPECT_EQ(sharing.IsFileSharingEnabled(), isWin9x());
  reg_.SetKeyVal(HKEY_LOCAL_MACHINE, "SOFTWARE\\Classes\\Network\\SharingHandler", "", "");
  EXPECT_FALSE(sharing.IsFileSharingEnabled());
}

TEST_P(SharingAndSetupSource, SourceLocationRemembersAndRestores) {
  Hostkit::CabFiles cabs;
  cabs.RestoreWinCabsLocation();  // nothing remembered: nothing changes
  EXPECT_EQ(Source(), "D:\\WIN98\\");
  cabs.SetWinCabsLocation("C:\\CABS");
  if (!isWin9x()) {
    EXPECT_EQ(Source(), "D:\\WIN98\\");
    EXPECT_FALSE(reg_.DoesKeyExist(HKEY_LOCAL_MACHINE, "Software\\Tavrin"));
    EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, "InstallLocationsMRU"));
    return;
  }
  EXPECT_EQ(Source(), "C:\\CABS");
  EXPECT_EQ(Remembered(), "D:\\WIN98\\");
  // The same folder again keeps the first remembered location.
  cabs.SetWinCabsLocation("C:\\CABS");
  EXPECT_EQ(Remembered(), "D:\\WIN98\\");
  EXPECT_EQ(Mru(), "a");
  // The comparison is exact: another case is another folder.
  cabs.SetWinCabsLocation("c:\\cabs");
  EXPECT_EQ(Remembered(), "C:\\CABS");
  EXPECT_EQ(Mru(), "ba");
  cabs.RestoreWinCabsLocation();
  EXPECT_EQ(Source(), "C:\\CABS");
  EXPECT_EQ(Remembered(), "(none)");
  EXPECT_EQ(Mru(), "ba");  // restoring leaves the list alone
  cabs.RestoreWinCabsLocation();
  EXPECT_EQ(Source(), "C:\\CABS");
}

TEST_P(SharingAndSetupSource, RecentLocationsKeepFiveMostRecentFirst) {
  if (!isWin9x()) {
    GTEST_SKIP() << "the list is kept on Windows 9x only";
  }
  Hostkit::CabFiles cabs;
  std::vector<std::string> orders;
  for (const char* folder : {"A:\\1", "A:\\2", "A:\\3", "A:\\4", "A:\\5", "A:\\6"}) {
    cabs.SetWinCabsLocation(folder);
    orders.push_back(Mru());
  }
  EXPECT_EQ(orders, (std::vector<std::string>{"a", "ba", "cba", "dcba", "edcba", "aedcb"}));
  const std::vector<std::pair<std::string, std::string>> slots = {
      {"a", "A:\\6"}, {"b", "A:\\2"}, {"c", "A:\\3"}, {"d", "A:\\4"}, {"e", "A:\\5"}};
  for (const auto& [letter, folder] : slots) {
    EXPECT_EQ(Read(HKEY_CURRENT_USER, "InstallLocationsMRU", letter.c_str()), folder);
  }
  // A remembered folder moves to the front without taking a letter; the least recent one is
  // overwritten next.
  cabs.SetWinCabsLocation("A:\\3");
  EXPECT_EQ(Mru(), "caedb");
  cabs.SetWinCabsLocation("A:\\7");
  EXPECT_EQ(Mru(), "bcaed");
  EXPECT_EQ(Read(HKEY_CURRENT_USER, "InstallLocationsMRU", "b"), "A:\\7");
  // A list with a gap takes the first free letter.
  reg_.SetKeyVal(HKEY_CURRENT_USER, "InstallLocationsMRU", "MRUList", "db");
  cabs.SetWinCabsLocation("A:\\8");
  EXPECT_EQ(Mru(), "adb");
  EXPECT_EQ(Read(HKEY_CURRENT_USER, "InstallLocationsMRU", "a"), "A:\\8");
}

INSTANTIATE_TEST_SUITE_P(AllReleases, SharingAndSetupSource,
                         testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
