// ConfigureIE where the simulated machine sets the scene: missing keys, the environment the
// program path expands with, and several users on one machine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostkit/configure_ie.h"
#include "hostkit/regwiz.h"
#include "hostkit/strings.h"
#include "platform/environment.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::ConfigureIE;
using Hostkit::RegWiz;
using Hostkit::wstring;
using hostkit_test::SimPerRelease;

constexpr const char* kWizard = "Software\\Microsoft\\Internet Connection Wizard";

std::string A(const wstring& wide) {
  std::string ascii;
  Hostkit::ConvertUnicodeToASCII(wide, ascii);
  return ascii;
}

class IESim : public SimPerRelease {
 protected:
  RegWiz reg_;
  ConfigureIE ie_;
};

TEST_P(IESim, NothingIsCreatedWhereTheKeysAreMissing) {
  EXPECT_FALSE(ie_.UseProxyServer(HK_WIDE("proxy"), 80));
  EXPECT_FALSE(ie_.UseHTTPProxyServer(HK_WIDE("proxy"), 80));
  EXPECT_FALSE(ie_.EnableLocalBypass(true));
  EXPECT_FALSE(ie_.UseAutoConfigurationScript(HK_WIDE("http://wpad/")));
  EXPECT_FALSE(ie_.EnableAutomaticSettingDetection(true));
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, "Software"));

  // Without the browser's key: no version and no home page to set, but one can still be read.
  EXPECT_FALSE(ie_.IsInstalled());
  wstring text = HK_WIDE("untouched");
  int number = -1;
  EXPECT_FALSE(ie_.GetVersionString(text));
  EXPECT_FALSE(ie_.GetMajorVersion(number));
  EXPECT_FALSE(ie_.GetMinorVersion(number));
  EXPECT_FALSE(ie_.SetHomePage(HK_WIDE("http://a/")));
  EXPECT_EQ(A(text), "untouched");
  EXPECT_EQ(number, -1);
  ASSERT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, "Software\\Microsoft\\Internet Explorer\\Main"));
  ASSERT_TRUE(reg_.SetKeyVal(HKEY_CURRENT_USER, "Software\\Microsoft\\Internet Explorer\\Main",
                             "Start Page", "http://b/"));
  ASSERT_TRUE(ie_.GetHomePage(text));
  EXPECT_EQ(A(text), "http://b/");

  // The wizard's key is not created either, on either family.
  EXPECT_FALSE(ie_.DisableConnectionWizard());
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_USERS, (std::string(".Default\\") + kWizard).c_str()));
  EXPECT_FALSE(reg_.DoesKeyExist(HKEY_CURRENT_USER, kWizard));
}

TEST_P(IESim, ProgramPathExpandsVariablesWithoutRegardToCase) {
  machine_->facts().environment["ProgramFiles"] = "C:\\Program Files";
  const char* setup = "SOFTWARE\\Microsoft\\IE Setup\\Setup";
  ASSERT_TRUE(reg_.CreateKey(HKEY_LOCAL_MACHINE, setup));
  wstring path;
  const std::pair<std::string, std::string> cases[] = {
      {"%ProgramFiles%\\Internet Explorer", "C:\\Program Files\\Internet Explorer"},
      {"%PROGRAMFILES%;%programfiles%", "C:\\Program Files;C:\\Program Files"},
      {"%Unknown%%ProgramFiles%%", "%Unknown%C:\\Program Files%"},
      // Only a path that starts with a variable is expanded.
      {"D:\\%ProgramFiles%", "D:\\%ProgramFiles%"},
      // The expansion is cut to what the buffer holds.
      {"%ProgramFiles%\\" + std::string(120, 'x'), "C:\\Program Files\\" + std::string(82, 'x')},
  };
  for (const auto& [stored, expected] : cases) {
    ASSERT_TRUE(reg_.SetKeyVal(HKEY_LOCAL_MACHINE, setup, "Path", stored.c_str()));
    ASSERT_TRUE(ie_.GetProgramPath(path)) << stored;
    EXPECT_EQ(A(path), expected);
  }
}

TEST_P(IESim, ExpansionReportsTheSizeItNeeds) {
  machine_->facts().environment["windir"] = "C:\\WINDOWS";
  char buffer[8] = "zzzzzzz";
  // 10 characters of the value, "\x", the terminator.
  EXPECT_EQ(Hostkit::platform::ExpandEnvironmentStringsA("%WINDIR%\\x", buffer, sizeof buffer),
            13U);
  EXPECT_STREQ(buffer, "C:\\WIND");
  EXPECT_EQ(Hostkit::platform::ExpandEnvironmentStringsA("50% off", nullptr, 0), 8U);
}

TEST_P(IESim, WizardOnTheNTFamilyMarksOnlyUsersWhoHaveItsKey) {
  if (isWin9x()) {
    GTEST_SKIP() << "Windows 9x keeps one flag for the default user";
  }
  const std::string withKey = std::string("S-1-5-21-1-1-1-1001\\") + kWizard;
  const std::string withoutKey = "S-1-5-21-1-1-1-1002\\Software\\Microsoft";
  ASSERT_TRUE(reg_.CreateKey(HKEY_USERS, withoutKey.c_str()));
  EXPECT_FALSE(ie_.DisableConnectionWizard()) << "no user has the wizard's key";

  ASSERT_TRUE(reg_.CreateKey(HKEY_USERS, withKey.c_str()));
  ASSERT_TRUE(reg_.CreateKey(HKEY_CURRENT_USER, kWizard));
  ASSERT_TRUE(ie_.DisableConnectionWizard());
  std::vector<unsigned char> completed;
  EXPECT_TRUE(reg_.GetBinaryKeyVal(HKEY_USERS, withKey.c_str(), "Completed", completed));
  EXPECT_TRUE(reg_.GetBinaryKeyVal(HKEY_CURRENT_USER, kWizard, "Completed", completed));
  EXPECT_FALSE(
      reg_.DoesKeyExist(HKEY_USERS, (withoutKey + "\\Internet Connection Wizard").c_str()));
}

INSTANTIATE_TEST_SUITE_P(Releases, IESim, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

TEST(IEUnknownRelease, WizardFailsOnAnUnknownSystem) {
  hostkit_test::UseFreshMachine(hostkit_test::Release::Unknown);
  ASSERT_TRUE(RegWiz().CreateKey(HKEY_USERS, (std::string(".Default\\") + kWizard).c_str()));
  EXPECT_FALSE(ConfigureIE().DisableConnectionWizard());
  Hostkit::sim::ActivateMachine(nullptr);
}

}  // namespace
