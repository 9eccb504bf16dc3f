// What only the simulated machine shows of favorites and identities: where each family keeps
// the Favorites folder, a Shell32 without the folder lookup, and identity ids that repeat from
// one fresh machine to the next.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "hostkit/configure_ie.h"
#include "hostkit/configure_oe.h"
#include "hostkit/regwiz.h"
#include "platform/shell_folders.h"
#include "sim_drives.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::ConfigureIE;
using hostkit_test::Release;
using hostkit_test::SimDrives;
using hostkit_test::UseFreshMachine;
namespace fs = std::filesystem;

TEST(SimFavorites, FolderFollowsTheFamilyAndNeedsTheShellEntry) {
  struct Case {
    Release release;
    const char* userProfile;  // null: the release's default
    const char* folder;       // below drive C:
  };
  for (const Case& c : {Case{Release::Win98, nullptr, "WINDOWS/Favorites"},
                        Case{Release::WinNT4, nullptr, "WINNT/Profiles/Administrator/Favorites"},
                        Case{Release::WinXP, "C:\\Documents and Settings\\Owner",
                             "Documents and Settings/Owner/Favorites"}}) {
    auto machine = UseFreshMachine(c.release);
    SimDrives drives(*machine);
    if (c.userProfile != nullptr) {
      machine->facts().environment["USERPROFILE"] = c.userProfile;
    }
    const fs::path folder = drives.root() / "c" / c.folder;
    ConfigureIE ie;
    EXPECT_FALSE(ie.AddFavorite({u"http://a/", u"A"})) << "the folder is not created";
    fs::create_directories(folder);
    EXPECT_TRUE(ie.AddFavorite({u"http://a/", u"A"}));
    EXPECT_TRUE(fs::exists(folder / "A.URL")) << c.folder;

    machine->modules()[Hostkit::platform::kShell32].entryPoints.erase(
        Hostkit::platform::kSHGetSpecialFolderPathA);
    std::vector<ConfigureIE::FavoriteLink> links;
    EXPECT_FALSE(ie.AddFavorite({u"http://b/", u"B"}));
    EXPECT_EQ(ie.GetFavorites(links), 0);
    EXPECT_TRUE(links.empty());
  }
}

TEST(SimIdentities, FreshMachinesMakeTheSameIdentityIds) {
  std::vector<std::string> ids;
  for (int run = 0; run < 3; ++run) {
    auto machine = UseFreshMachine(Release::WinXP);
    if (run == 2) {
      machine->guidGenerator().seed(7);
    }
    Hostkit::ConfigureOE::AccountInfo info;
    info.userName = u"Ann";
    ASSERT_TRUE(Hostkit::ConfigureOE().SetAccount(info));
    // The machine has no "Identities" yet, so the identity's key is all there is of it.
    std::vector<std::string> keys;
    ASSERT_TRUE(Hostkit::RegWiz().GetSubKeyNames(HKEY_CURRENT_USER, "Identities", keys));
    ASSERT_EQ(keys.size(), 1U);
    ids.push_back(keys[0]);
  }
  EXPECT_EQ(ids[0], ids[1]);
  EXPECT_NE(ids[0], ids[2]);
  Hostkit::sim::ActivateMachine(nullptr);
}

}  // namespace
