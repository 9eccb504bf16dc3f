// RegistryBackup on keys a test cannot write under Wine: whole roots and system keys.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "hostkit/registry_backup.h"
#include "hostkit/regwiz.h"
#include "sim_drives.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::RegistryBackup;
using hostkit_test::Release;

std::string SaveFile(RegistryBackup& backup, const hostkit_test::SimDrives& drives) {
  EXPECT_TRUE(backup.SaveRegistry(HK_WIDE("C:\\root.reg")));
  std::ifstream in(drives.root() / "c" / "root.reg", std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(RegistryBackupSim, AnEmptyPathWritesTheRootItself) {
  auto machine = hostkit_test::UseFreshMachine(Release::Win98);
  hostkit_test::SimDrives drives(*machine);
  drives.AddFolder("c");
  Hostkit::RegWiz reg;
  ASSERT_TRUE(reg.CreateKey(HKEY_DYN_DATA, "Config Manager"));
  ASSERT_TRUE(reg.SetDwordKeyVal(HKEY_DYN_DATA, "Config Manager", "Count", 2));

  RegistryBackup backup;
  EXPECT_TRUE(backup.AddRegistryKey(HKEY_LOCAL_MACHINE, HK_WIDE("")));
  EXPECT_TRUE(backup.AddRegistryKey(HKEY_DYN_DATA, HK_WIDE("\\")));
  EXPECT_EQ(SaveFile(backup, drives),
            "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE]\r\n\r\n[HKEY_DYN_DATA]\r\n\r\n"
            "[HKEY_DYN_DATA\\Config Manager]\r\n\"Count\"=dword:00000002\r\n\r\n");
  Hostkit::sim::ActivateMachine(nullptr);
}

// Windows 2000 leaves out the values of the performance-counter texts (only its own key, not
// its subkeys); Windows XP writes them like any other key.
TEST(RegistryBackupSim, OnlyWindows2000LeavesOutThePerformanceTexts) {
  const char* const perflib = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Perflib\\009";
  for (const Release release : {Release::Win2000, Release::WinXP}) {
    auto machine = hostkit_test::UseFreshMachine(release);
    hostkit_test::SimDrives drives(*machine);
    drives.AddFolder("c");
    Hostkit::RegWiz reg;
    ASSERT_TRUE(reg.CreateKey(HKEY_LOCAL_MACHINE, (std::string(perflib) + "\\Sub").c_str()));
    ASSERT_TRUE(reg.SetKeyVal(HKEY_LOCAL_MACHINE, perflib, "Counter", "1"));
    ASSERT_TRUE(
        reg.SetKeyVal(HKEY_LOCAL_MACHINE, (std::string(perflib) + "\\Sub").c_str(), "X", "2"));

    RegistryBackup backup;
    EXPECT_TRUE(backup.AddRegistryKey(
        HKEY_LOCAL_MACHINE, HK_WIDE("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Perflib")));
    const std::string key =
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Perflib";
    std::string expected = "Windows Registry Editor Version 5.00\r\n\r\n";
    expected += key + "]\r\n\r\n";
    expected += key + "\\009]\r\n";
    expected += release == Release::WinXP ? "\"Counter\"=\"1\"\r\n\r\n" : "\r\n";
    expected += key + "\\009\\Sub]\r\n\"X\"=\"2\"\r\n\r\n";
    std::string utf16 = "\xFF\xFE";
    for (const char c : expected) {
      utf16 += c;
      utf16 += '\0';
    }
    EXPECT_EQ(SaveFile(backup, drives), utf16) << hostkit_test::ReleaseTag(release);
    Hostkit::sim::ActivateMachine(nullptr);
  }
}

}  // namespace
