// Bad input to the profile loader and the registry file reader: every refusal is one line
// "FILE:LINE: what is wrong" in the readers' own words, with the limits on size, nesting and
// key names; and a refused import leaves the registry, and the handles open on it, as they were.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/sim/profile.h"
#include "platform/registry.h"
#include "platform/sim/registry/store.h"
#include "support/sim_machine.h"

namespace Hostkit::sim {
namespace {

using hostkit_test::Release;
using hostkit_test::UseFreshMachine;

class BadInput : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::path(testing::TempDir()) /
              ("hostkit-bad-input-" + std::to_string(std::random_device{}()));
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override {
    std::filesystem::remove_all(folder_);
    ActivateMachine(nullptr);
  }
  std::filesystem::path Write(const std::string& name, const std::string& text) {
    const auto path = folder_ / name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  std::filesystem::path folder_;
};

struct ProfileCase {
  const char* what;
  std::string text;
  std::string message;  // after "p.json:"
};

class ProfileMessages : public BadInput, public testing::WithParamInterface<ProfileCase> {};

TEST_P(ProfileMessages, AreOneExactLine) {
  std::string error;
  EXPECT_EQ(LoadMachineProfileText(GetParam().text, "p.json", {}, folder_, error), nullptr);
  EXPECT_EQ(error, "p.json:" + GetParam().message);
}

std::string Nested(int depth) {
  std::string text = "{ \"release\": \"winxp\",\n  \"windows\": [";
  for (int i = 0; i < depth; ++i) {
    text += "{ \"controls\": [";
  }
  for (int i = 0; i < depth; ++i) {
    text += "] }";
  }
  return text + "] }";
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProfileMessages,
    testing::Values(
        ProfileCase{"NumberOutOfRange", "{ \"release\": \"winxp\",\n  \"language\": 1e400 }",
                    "2: number 1e400 is out of range"},
        ProfileCase{"Syntax", "{ \"release\": \"winxp\",\n  \"language\": 1,, }",
                    "2: invalid JSON at column 17"},
        ProfileCase{"EndsEarly", "{ \"release\": \"winxp\",\n",
                    "2: invalid JSON: the text ends too early"},
        ProfileCase{"KeyWithLineBreak", "{ \"release\": \"winxp\",\n  \"a\\nb\\u0007\": 1 }",
                    "2: unknown field \"a\\nb\\x07\""},
        ProfileCase{"EscapedKeyOnItsLine", "{ \"release\": \"winxp\",\n\n  \"caf\\u00e9\": 1 }",
                    "3: unknown field \"caf\xC3\xA9\""},
        ProfileCase{"NestedTooDeep", Nested(20000), "2: nested deeper than 64 levels"},
        ProfileCase{"NestedOneTooDeep", Nested(32), "2: nested deeper than 64 levels"}),
    [](const testing::TestParamInfo<ProfileCase>& info) { return std::string(info.param.what); });

TEST_F(BadInput, WindowsNestedToTheLimitLoad) {
  std::string error;
  const auto machine = LoadMachineProfileText(Nested(31), "p.json", {}, folder_, error);
  ASSERT_NE(machine, nullptr) << error;
  HWND window = nullptr;
  int depth = 0;
  for (auto level = machine->windows().children(nullptr); !level.empty();
       level = machine->windows().children(window)) {
    window = level.front();
    ++depth;
  }
  EXPECT_EQ(depth, 31);
}

TEST_F(BadInput, UnreadableFilesAreNamedWithWhy) {
  std::filesystem::create_directories(folder_ / "sub.reg");
  const auto profile = [&](const std::string& entry) {
    return Write("m.json", "{ \"release\": \"winxp\",\n  \"registry\": [\"" + entry + "\"] }");
  };
  std::string error;
  auto path = profile("sub.reg");
  EXPECT_EQ(LoadMachineProfile(path, error), nullptr);
  EXPECT_EQ(error, path.string() + ":2: cannot read registry file \"" +
                       (folder_ / "sub.reg").string() + "\": the file is a folder");

  path = profile("/dev/zero");
  EXPECT_EQ(LoadMachineProfile(path, error), nullptr);
  EXPECT_EQ(error,
            path.string() +
                ":2: cannot read registry file \"/dev/zero\": the file is not a regular file");

  const auto large = folder_ / "large.reg";
  std::ofstream(large) << "REGEDIT4\r\n";
  std::filesystem::resize_file(large, regfile::kMaxFileBytes + 1);
  path = profile("large.reg");
  EXPECT_EQ(LoadMachineProfile(path, error), nullptr);
  EXPECT_EQ(error, path.string() + ":2: cannot read registry file \"" + large.string() +
                       "\": the file is larger than 64 MiB");
  const auto machine = std::make_shared<Machine>(sim::Release::WinXP);
  EXPECT_FALSE(ImportRegFile(*machine, large, error));
  EXPECT_EQ(error, large.string() + ":1: the file is larger than 64 MiB");

  EXPECT_EQ(LoadMachineProfile(folder_ / "sub.reg", error), nullptr);
  EXPECT_EQ(error, (folder_ / "sub.reg").string() + ":1: the file is a folder");
  EXPECT_EQ(LoadMachineProfile(folder_ / "none.json", error), nullptr);
  EXPECT_EQ(error, (folder_ / "none.json").string() + ":1: the file does not exist");
}

struct RegCase {
  const char* what;
  std::string body;  // after a header line and a good key line
  std::string message;
};

class RegMessages : public testing::TestWithParam<RegCase> {};

TEST_P(RegMessages, AreOneExactLine) {
  UseFreshMachine(Release::WinXP);
  std::vector<regfile::Operation> operations;
  std::string error;
  const std::string text = "REGEDIT4\r\n[HKLM\\SOFTWARE\\A]\r\n" + GetParam().body;
  EXPECT_FALSE(regfile::ParseRegFile(text, "in\nput.reg", operations, error));
  EXPECT_EQ(error, "in\\nput.reg:" + GetParam().message);
}

std::string KeyPath(int levels, const std::string& name) {
  std::string path = "[HKLM";
  for (int i = 0; i < levels; ++i) {
    path += "\\" + name;
  }
  return path + "]\r\n";
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RegMessages,
    testing::Values(
        RegCase{"BackslashBeforeLineBreak", "\"v\"=\"a\\\r\n\"\r\n",
                "3: unknown escape \"\\\\r\" in quoted text"},
        RegCase{"ControlInRootName", "[HK\x01\tX\\a]\r\n", "3: unknown root key \"HK\\x01\\tX\""},
        RegCase{"KeyNameTooLong", KeyPath(1, std::string(256, 'k')),
                "3: a key name is longer than 255 characters"},
        RegCase{"KeyPathTooDeep", KeyPath(513, "k"), "3: the key path has more than 512 levels"}),
    [](const testing::TestParamInfo<RegCase>& info) { return std::string(info.param.what); });

TEST(RegLimits, KeysAtTheLimitsAreRead) {
  UseFreshMachine(Release::WinXP);
  std::vector<regfile::Operation> operations;
  std::string error;
  EXPECT_TRUE(
      regfile::ParseRegFile("REGEDIT4\r\n" + KeyPath(1, std::string(255, 'k')) + KeyPath(512, "k"),
                            "ok.reg", operations, error))
      << error;
  EXPECT_FALSE(regfile::ParseRegFile(std::string(regfile::kMaxFileBytes + 1, ' '), "big.reg",
                                     operations, error));
  EXPECT_EQ(error, "big.reg:1: the file is larger than 64 MiB");
  ActivateMachine(nullptr);
}

TEST_F(BadInput, ARefusedImportKeepsOpenHandlesWorking) {
  const auto machine = UseFreshMachine(Release::WinXP);
  std::string error;
  ASSERT_TRUE(ImportRegFile(
      *machine, Write("a.reg", "REGEDIT4\r\n[HKLM\\SOFTWARE\\Keep\\Sub]\r\n\"v\"=\"1\"\r\n"),
      error))
      << error;
  HKEY keep = nullptr;
  HKEY sub = nullptr;
  ASSERT_EQ(platform::RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Keep", 0, KEY_ALL_ACCESS, &keep),
            ERROR_SUCCESS);
  ASSERT_EQ(platform::RegOpenKeyExA(keep, "Sub", 0, KEY_READ, &sub), ERROR_SUCCESS);
  const RegistrySnapshot before = machine->registry().snapshot();

  // Deletes both keys, makes a new one, then fails on a root the NT family does not have.
  EXPECT_FALSE(
      ImportRegFile(*machine,
                    Write("b.reg",
                          "REGEDIT4\r\n[-HKLM\\SOFTWARE\\Keep]\r\n[HKLM\\SOFTWARE\\New]\r\n"
                          "[HKEY_DYN_DATA\\x]\r\n"),
                    error));
  EXPECT_EQ(machine->registry().snapshot(), before);
  char data[8] = {};
  DWORD size = sizeof data;
  EXPECT_EQ(
      platform::RegQueryValueExA(sub, "v", nullptr, nullptr, reinterpret_cast<BYTE*>(data), &size),
      ERROR_SUCCESS);
  EXPECT_STREQ(data, "1");
  const BYTE two[] = "2";
  EXPECT_EQ(platform::RegSetValueExA(keep, "w", 0, REG_SZ, two, sizeof two), ERROR_SUCCESS);
  HKEY again = nullptr;
  EXPECT_EQ(platform::RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Keep", 0, KEY_READ, &again),
            ERROR_SUCCESS);
  size = sizeof data;
  EXPECT_EQ(platform::RegQueryValueExA(again, "w", nullptr, nullptr, reinterpret_cast<BYTE*>(data),
                                       &size),
            ERROR_SUCCESS);
  EXPECT_EQ(platform::RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\New", 0, KEY_READ, &again),
            ERROR_FILE_NOT_FOUND);
  platform::RegCloseKey(sub);
  platform::RegCloseKey(keep);
}

}  // namespace
}  // namespace Hostkit::sim
