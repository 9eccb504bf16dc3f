// DialUp on every release, in a registry of dial-up devices and autodial keys the tests build:
// the component queries family by family (StaticTcpipInfo shares their rules without the family
// limits), the NT family touching nothing, and automatic dialling switched on everywhere in
// order. Every key a test touches is watched and put back, so the tests also run under Wine.
#include "hostkit/dialup.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/static_tcpip.h"
#include "support/registry_import.h"
#include "support/saved_key.h"
#include "support/test_machine.h"
#include "support/watched_key.h"

namespace {

using hostkit_test::PerRelease;
using hostkit_test::Release;
using hostkit_test::WatchedKey;
using Strings = std::vector<std::string>;

constexpr const char* kRootNet = "Enum\\Root\\Net";
constexpr const char* kNetClass = "System\\CurrentControlSet\\Services\\Class\\Net";
constexpr const char* kComponents =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\OptionalComponents";
constexpr const char* kSettings = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr const char* kLowerSettings =
    "Software\\Microsoft\\windows\\CurrentVersion\\Internet Settings";

class DialUpTest : public PerRelease {
 protected:
  void TearDown() override {
    hostkit_test::UndoInReverse(saved_);
    PerRelease::TearDown();
  }
  void Apply(const std::string& text) {
    std::vector<Hostkit::regfile::Operation> operations;
    std::string error;
    ASSERT_TRUE(
        Hostkit::regfile::ParseRegFile("REGEDIT4\r\n\r\n" + text, "dialup.reg", operations, error))
        << error;
    ASSERT_TRUE(hostkit_test::ApplyWithUndo(operations, "dialup.reg", saved_, error)) << error;
  }

 private:
  std::vector<std::unique_ptr<hostkit_test::SavedKey>> saved_;
};

// Two dial-up adapters (one bound to TCP/IP), the VPN adapter behind a VPN class entry that an
// earlier installation left unused, and the optional components of Dial-Up Networking 1.3.
const char* const kDevices =
    "[HKEY_LOCAL_MACHINE\\Enum\\Root\\Net\\HK01]\r\n\"Driver\"=\"Net\\\\HK01\"\r\n"
    "[HKEY_LOCAL_MACHINE\\Enum\\Root\\Net\\HK01\\Bindings]\r\n\"MSTCP\\\\0001\"=\"\"\r\n"
    "[HKEY_LOCAL_MACHINE\\Enum\\Root\\Net\\HK02]\r\n\"Driver\"=\"Net\\\\HK02\"\r\n"
    "[HKEY_LOCAL_MACHINE\\Enum\\Root\\Net\\HK02\\Bindings]\r\n\"NETBEUI\\\\0000\"=\"\"\r\n"
    "[HKEY_LOCAL_MACHINE\\Enum\\Root\\Net\\HK03]\r\n\"Driver\"=\"Net\\\\HK03\"\r\n"
    "[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\Class\\Net\\HK01]\r\n"
    "\"DeviceVxDs\"=\"pppmac.vxd\"\r\n"
    "[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\Class\\Net\\HK02]\r\n"
    "\"DeviceVxDs\"=\"pppmac.vxd\"\r\n"
    "[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\Class\\Net\\HK00]\r\n"
    "\"DeviceVxDs\"=\"netpptp.sys\"\r\n"
    "[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\Class\\Net\\HK03]\r\n"
    "\"DeviceVxDs\"=\"netpptp.sys\"\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\"
    "OptionalComponents\\RNASERV]\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\"
    "OptionalComponents\\VPN]\r\n\"Installed\"=\"1\"\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\"
    "OptionalComponents\\RNA]\r\n\"Installed\"=\"1\"\r\n";

TEST_P(DialUpTest, ComponentsAnswerOnWindows9xOnlyAndNtTouchesNothing) {
  Apply(kDevices);
  WatchedKey devices(HKEY_LOCAL_MACHINE, kRootNet);
  WatchedKey classes(HKEY_LOCAL_MACHINE, kNetClass);
  WatchedKey components(HKEY_LOCAL_MACHINE, kComponents);
  Hostkit::DialUp dialup;
  EXPECT_EQ(dialup.IsMsDun13Installed(), GetParam() == Release::Win95);
  EXPECT_EQ(dialup.IsMicrosoftVpnInstalled(), isWin9x());
  EXPECT_EQ(dialup.NumMicrosoftDialupAdapters(), isWin9x() ? 2 : 0);
  Hostkit::StaticTcpipInfo info;
  EXPECT_EQ(info.NumMicrosoftDialupAdapters(), 2);
  EXPECT_TRUE(info.IsMicrosoftVpnInstalled());
  EXPECT_EQ(info.IsMsDun13Installad(), dialup.IsMsDun13Installed());
  if (!isWin9x()) {
    dialup.RemoveDialupAdaptersNotBoundToTcpip();
    EXPECT_FALSE(dialup.InstallVpn());
    EXPECT_FALSE(dialup.InstallDialUpAdapters(2));
    EXPECT_EQ(devices.Changes(), Strings{});
    EXPECT_EQ(classes.Changes(), Strings{});
    EXPECT_EQ(components.Changes(), Strings{});
  }
}

// Configurations with and without Internet Settings, and three control sets below the literal
// "HKLM\SYSTEM" with one, two and three hardware profiles, each profile with Internet Settings.
const char* const kAutodialKeys =
    "[HKEY_LOCAL_MACHINE\\HKLM\\Config\\0001\\Software\\Microsoft\\windows\\CurrentVersion\\"
    "Internet Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\HKLM\\Config\\0002\\Software\\Microsoft]\r\n"
    "[HKEY_LOCAL_MACHINE\\HKLM\\SYSTEM\\A\\Hardware Profiles\\0001\\Software\\Microsoft\\windows\\"
    "CurrentVersion\\Internet Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\HKLM\\SYSTEM\\B\\Hardware Profiles\\0001\\Software\\Microsoft\\windows\\"
    "CurrentVersion\\Internet Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\HKLM\\SYSTEM\\B\\Hardware Profiles\\0002\\Software\\Microsoft\\windows\\"
    "CurrentVersion\\Internet Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\HKLM\\SYSTEM\\C\\Hardware Profiles\\0001\\Software\\Microsoft\\windows\\"
    "CurrentVersion\\Internet Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\HKLM\\SYSTEM\\C\\Hardware Profiles\\0002\\Software\\Microsoft\\windows\\"
    "CurrentVersion\\Internet Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\HKLM\\SYSTEM\\C\\Hardware Profiles\\0003\\Software\\Microsoft\\windows\\"
    "CurrentVersion\\Internet Settings]\r\n"
    "[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings]\r\n"
    "\"EnableAutodial\"=-\r\n"
    "[HKEY_USERS\\.Default\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings]\r\n"
    "\"EnableAutodial\"=-\r\n"
    "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings]\r\n"
    "\"EnableAutodial\"=-\r\n"
    "[HKEY_CURRENT_CONFIG\\Software\\Microsoft\\windows\\CurrentVersion\\Internet Settings]\r\n"
    "\"EnableAutodial\"=-\r\n"
    "[HKEY_CURRENT_USER\\RemoteAccess]\r\n\"InternetProfile\"=-\r\n";

TEST_P(DialUpTest, AutodialIsSwitchedOnEverywhereAndTheEntryOnlyWhenNamed) {
  Apply(kAutodialKeys);
  WatchedKey literal(HKEY_LOCAL_MACHINE, "HKLM");
  WatchedKey machine(HKEY_LOCAL_MACHINE, kSettings);
  WatchedKey defaultUser(HKEY_USERS, std::string(".Default\\") + kSettings);
  WatchedKey user(HKEY_CURRENT_USER, kSettings);
  WatchedKey config(HKEY_CURRENT_CONFIG, kLowerSettings);
  WatchedKey remoteAccess(HKEY_CURRENT_USER, "RemoteAccess");
  WatchedKey autoDial(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\RAS AutoDial");
  const std::string on = std::string("\\") + kLowerSettings + "|EnableAutodial=dword:1";

  Hostkit::DialUp dialup;
  ASSERT_TRUE(dialup.EnableDialUp(Hostkit::wstring()));
  // The counter shared by the control sets and their profiles writes set A's first profile
  // once, skips set B, and writes set C's first profile once.
  EXPECT_EQ(literal.Changes(),
            (Strings{"Config\\0001" + on, "SYSTEM\\A\\Hardware Profiles\\0001" + on,
                     "SYSTEM\\C\\Hardware Profiles\\0001" + on}));
  for (const WatchedKey* key : {&machine, &defaultUser, &user, &config}) {
    EXPECT_EQ(key->Changes(), Strings{"|EnableAutodial=dword:1"});
  }
  EXPECT_EQ(remoteAccess.Changes(), Strings{});
  EXPECT_EQ(autoDial.Changes(), Strings{});

  ASSERT_TRUE(dialup.EnableDialUp(HK_WIDE("Hostkit ISP")));
  EXPECT_EQ(remoteAccess.Changes(), Strings{"|InternetProfile=\"Hostkit ISP\""});
  const Strings entry = autoDial.Changes();
  EXPECT_NE(std::find(entry.begin(), entry.end(), "Default|DefaultInternet=\"Hostkit ISP\""),
            entry.end());
}

INSTANTIATE_TEST_SUITE_P(AllReleases, DialUpTest, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
