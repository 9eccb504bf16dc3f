// The simulated registry store's own interface: snapshots, the current-user setting, and the
// two families compared through the same narrow calls.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "platform/sim/registry/store.h"
#include "support/registry_probe.h"
#include "support/sim_machine.h"

namespace Hostkit::platform {
namespace {

using namespace hostkit_test::registry_probe;
using hostkit_test::Release;
using testing::ElementsAre;
using namespace std::string_literals;
using namespace std::string_view_literals;

// The simulated store's own interface: snapshots, the current-user setting, and the two
// families compared through the same narrow calls.

void WriteSampleTree() {
  HKEY key = Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Product");
  Set(key, "Name", "Caf\xE9");
  Set(key, "List", "a\0b\0\0"sv, REG_MULTI_SZ);
  Set(key, "Flags", "\x01\x00\x00\x00"sv, REG_DWORD);
  Hostkit::platform::RegCloseKey(key);
  Hostkit::platform::RegCloseKey(Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Other"));
}

// Everything below `path` as the narrow calls see it, one line per key and value.
std::vector<std::string> NarrowDump(HKEY root, const std::string& path) {
  std::vector<std::string> lines{"[" + path + "]"};
  HKEY key = Create(root, path.c_str());
  for (const auto& name : ValueNames(key)) {
    const Filled read = Query(key, name.c_str());
    lines.push_back(name + "=" + std::to_string(read.type) + ":");
    lines.back() += read.buffer;
  }
  for (const auto& name : Subkeys(key)) {
    const auto below = NarrowDump(root, std::string(path).append("\\").append(name));
    lines.insert(lines.end(), below.begin(), below.end());
  }
  Hostkit::platform::RegCloseKey(key);
  return lines;
}

TEST(RegistryStoreDirect, BothFamiliesReadTheSameThroughNarrowCallsButStoreTextDifferently) {
  auto win98 = hostkit_test::UseFreshMachine(Release::Win98);
  WriteSampleTree();
  const auto dump98 = NarrowDump(HKEY_LOCAL_MACHINE, "SOFTWARE");
  auto winXp = hostkit_test::UseFreshMachine(Release::WinXP);
  WriteSampleTree();
  EXPECT_EQ(NarrowDump(HKEY_LOCAL_MACHINE, "SOFTWARE"), dump98);
  EXPECT_THAT(dump98, testing::Contains("Name=1:Caf\xE9"));
  const auto name98 =
      win98->registry().snapshot().localMachine.subkeys[0].subkeys[0].subkeys[1].values[0];
  const auto nameXp =
      winXp->registry().snapshot().localMachine.subkeys[0].subkeys[0].subkeys[1].values[0];
  // ANSI and UTF-16, each with the terminator its family stores after the four characters.
  EXPECT_TRUE(name98.narrowText && name98.data.size() == 5);
  EXPECT_TRUE(!nameXp.narrowText && nameXp.data.size() == 10);

  // A release changed after the values were written still reads them in the right width.
  win98->facts().release = Release::WinXP;
  sim::ActivateMachine(win98);
  WCHAR text[8] = {};
  DWORD size = sizeof text;
  HKEY key = Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Product");
  EXPECT_EQ(Hostkit::platform::RegQueryValueExW(key, u"Name", nullptr, nullptr,
                                                reinterpret_cast<BYTE*>(text), &size),
            ERROR_SUCCESS);
  EXPECT_EQ(std::u16string(text), u"Caf\u00E9");
  Hostkit::platform::RegCloseKey(key);
  sim::ActivateMachine(nullptr);
}

TEST(RegistryStoreDirect, SnapshotsCompareRestoreAndCloneWholeRegistries) {
  auto machine = hostkit_test::UseFreshMachine(Release::Win2000);
  WriteSampleTree();
  const sim::RegistrySnapshot before = machine->registry().snapshot();
  HKEY held = Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Product");
  Set(held, "Name", "changed");
  Hostkit::platform::RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor\\Other");
  EXPECT_NE(machine->registry().snapshot(), before);
  machine->registry().restore(before);
  EXPECT_EQ(machine->registry().snapshot(), before);
  EXPECT_EQ(Query(held, "Name").status, ERROR_KEY_DELETED);
  Hostkit::platform::RegCloseKey(held);

  auto clone = hostkit_test::UseFreshMachine(Release::Win2000);
  clone->registry().restore(before);
  EXPECT_EQ(clone->registry().snapshot(), before);
  EXPECT_THAT(NarrowDump(HKEY_LOCAL_MACHINE, "SOFTWARE"),
              ElementsAre("[SOFTWARE]", "[SOFTWARE\\Vendor]", "[SOFTWARE\\Vendor\\Other]",
                          "[SOFTWARE\\Vendor\\Product]", "Name=1:Caf\xE9", "List=7:a\0b\0\0"s,
                          "Flags=4:\x01\0\0\0"s));
  sim::ActivateMachine(nullptr);
}

TEST(RegistryStoreDirect, CurrentUserAndCurrentConfigResolvePerFamilyAndSetting) {
  for (const auto& [release, user, config] :
       {std::tuple{Release::Win95, ".DEFAULT", "Config\\0001"},
        std::tuple{Release::WinNT4, "S-1-5-21-0-0-0-1000",
                   "SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current"}}) {
    auto machine = hostkit_test::UseFreshMachine(release);
    Hostkit::platform::RegCloseKey(Create(HKEY_CURRENT_USER, "Software\\Mine"));
    Hostkit::platform::RegCloseKey(Create(HKEY_CURRENT_CONFIG, "Display"));
    EXPECT_THAT(NarrowDump(HKEY_USERS, user),
                testing::Contains(std::string("[") + user + "\\Software\\Mine]"));
    EXPECT_THAT(NarrowDump(HKEY_LOCAL_MACHINE, config),
                testing::Contains(std::string("[") + config + "\\Display]"));

    machine->registry().setCurrentUserKey(u"S-1-5-21-7-7-7-1001");
    EXPECT_EQ(machine->registry().currentUserKey(), u"S-1-5-21-7-7-7-1001");
    Hostkit::platform::RegCloseKey(Create(HKEY_CURRENT_USER, "Software\\Other"));
    EXPECT_THAT(Subkeys(HKEY_USERS), ElementsAre(user, "S-1-5-21-7-7-7-1001"));
  }
  sim::ActivateMachine(nullptr);
}

}  // namespace
}  // namespace Hostkit::platform
