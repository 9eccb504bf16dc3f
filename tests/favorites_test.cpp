// Favorites on every release: shortcuts written by AddFavorite come back from GetFavorites
// with names that recreate them, and are plain initialisation files that the running system's
// own profile-string calls read (Wine's under Wine). The profile-string rules themselves are
// checked on both legs, so the simulation answers as Windows does.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "hostkit/configure_ie.h"
#include "hostkit/strings.h"
#include "platform/modules.h"
#include "platform/profile_strings.h"
#include "platform/shell_folders.h"
#include "support/scratch_folder.h"
#include "support/test_machine.h"

namespace {

using Hostkit::ConfigureIE;
using Hostkit::wstring;
using hostkit_test::PerRelease;
using hostkit_test::ScratchFolder;
namespace platform = Hostkit::platform;

wstring W(const std::string& ascii) {
  wstring wide;
  Hostkit::ConvertASCIIToUnicode(ascii, wide);
  return wide;
}

// The Favorites folder as the running system names it, created when missing.
std::string FavoritesFolder() {
  HMODULE shell = platform::LoadLibraryA(platform::kShell32);
  if (shell == nullptr) {
    return {};
  }
  const auto entry =
      reinterpret_cast<platform::SHGetSpecialFolderPathAProc>(reinterpret_cast<void (*)()>(
          platform::GetProcAddress(shell, platform::kSHGetSpecialFolderPathA)));
  std::array<char, MAX_PATH> path{};
  const bool ok = entry != nullptr && entry(nullptr, path.data(), platform::kFavoritesFolder, TRUE);
  platform::FreeLibrary(shell);
  return ok ? path.data() : "";
}

std::string ReadProfile(const std::string& file, const char* section, const char* key,
                        DWORD size = 1024, DWORD* length = nullptr) {
  std::vector<char> buffer(size, 'X');
  const DWORD read = platform::GetPrivateProfileStringA(section, key, "fallback  ", buffer.data(),
                                                        size, file.c_str());
  if (length != nullptr) {
    *length = read;
  }
  return std::string(buffer.data(), read);
}

class Favorites : public PerRelease {
 protected:
  void SetUp() override {
    PerRelease::SetUp();
    if (IsSkipped()) {
      return;
    }
    scratch_.emplace();  // the simulated machine's drives
    folder_ = FavoritesFolder();
    ASSERT_FALSE(folder_.empty());
  }
  void TearDown() override {
    if (hostkit_test::OnRealWindows() && !folder_.empty()) {
      std::error_code ignored;
      std::filesystem::remove_all(folder_ + "\\" + kOwn, ignored);
    }
    scratch_.reset();
    PerRelease::TearDown();
  }

  static constexpr const char* kOwn = "Hostkit Test";
  std::optional<ScratchFolder> scratch_;
  std::string folder_;
};

TEST_P(Favorites, ShortcutsRoundTripThroughSubFolders) {
  ConfigureIE ie;
  const wstring longUrl = W("http://example.com/" + std::string(241, 'a'));  // 260 characters
  ASSERT_EQ(longUrl.size(), 260u);
  const std::vector<ConfigureIE::FavoriteLink> added = {
      {W("http://example.com/"), W(std::string(kOwn) + "\\Home")},
      {longUrl, W(std::string(kOwn) + "\\News\\Daily")},
  };
  for (const auto& link : added) {
    ASSERT_TRUE(ie.AddFavorite(link));
  }
  const std::string own = folder_ + "\\" + kOwn;
  // Not a shortcut: listed by neither name nor count.
  ASSERT_TRUE(platform::WritePrivateProfileStringA("InternetShortcut", "URL", "http://no/",
                                                   (own + "\\notes.txt").c_str()));
  // The file is an ordinary initialisation file to the system's own reader.
  EXPECT_EQ(ReadProfile(own + "\\News\\Daily.URL", "InternetShortcut", "URL"),
            std::string(260, 'a').replace(0, 19, "http://example.com/"));

  std::vector<ConfigureIE::FavoriteLink> links{{W("kept"), W("kept")}};
  const int count = ie.GetFavorites(links);
  EXPECT_EQ(count, static_cast<int>(links.size()) - 1);
  std::vector<ConfigureIE::FavoriteLink> ours;
  std::copy_if(links.begin(), links.end(), std::back_inserter(ours),
               [](const auto& link) { return link.name.starts_with(W(kOwn)); });
  ASSERT_EQ(ours.size(), 2u);
  std::sort(ours.begin(), ours.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  for (std::size_t i = 0; i < added.size(); ++i) {
    EXPECT_EQ(ours[i].name, added[i].name);
    EXPECT_EQ(ours[i].url, added[i].url);
  }

  // A listed name recreates the same file: the address changes, other content stays.
  ASSERT_TRUE(platform::WritePrivateProfileStringA("InternetShortcut", "IconIndex", "3",
                                                   (own + "\\News\\Daily.URL").c_str()));
  ASSERT_TRUE(ie.AddFavorite({W("http://changed/"), ours[1].name}));
  EXPECT_EQ(ReadProfile(own + "\\News\\Daily.URL", "InternetShortcut", "URL"), "http://changed/");
  EXPECT_EQ(ReadProfile(own + "\\News\\Daily.URL", "internetshortcut", "ICONINDEX"), "3");
  links.clear();
  EXPECT_EQ(ie.GetFavorites(links), count);
}

TEST_P(Favorites, ProfileStringsKeepTheRestOfTheFile) {
  std::string file;
  ASSERT_TRUE(Hostkit::ConvertUnicodeToANSI(scratch_->WindowsPath("set.ini"), file));
  ASSERT_TRUE(platform::WritePrivateProfileStringA("One", "a", "1", file.c_str()));
  ASSERT_TRUE(platform::WritePrivateProfileStringA("Two", "b", "  \"quoted\"  ", file.c_str()));
  ASSERT_TRUE(platform::WritePrivateProfileStringA("ONE", "C", "3", file.c_str()));
  ASSERT_TRUE(platform::WritePrivateProfileStringA("one", "A", "4", file.c_str()));
  EXPECT_EQ(ReadProfile(file, "one", "a"), "4");
  EXPECT_EQ(ReadProfile(file, "Two", "B"), "quoted");
  EXPECT_EQ(ReadProfile(file, "Two", "missing"), "fallback");  // trailing blanks dropped
  EXPECT_EQ(ReadProfile(file, "One", nullptr), std::string("a\0C\0", 4));
  EXPECT_EQ(ReadProfile(file, nullptr, nullptr), std::string("One\0Two\0", 8));

  DWORD length = 0;  // cut values answer size - 1, cut lists size - 2
  EXPECT_EQ(ReadProfile(file, "Two", "b", 4, &length), "quo");
  EXPECT_EQ(length, 3u);
  EXPECT_EQ(ReadProfile(file, nullptr, nullptr, 6, &length), std::string("One\0", 4));
  EXPECT_EQ(length, 4u);

  ASSERT_TRUE(platform::WritePrivateProfileStringA("One", "a", nullptr, file.c_str()));
  ASSERT_TRUE(platform::WritePrivateProfileStringA("TWO", nullptr, nullptr, file.c_str()));
  EXPECT_EQ(ReadProfile(file, nullptr, nullptr), std::string("One\0", 4));
  EXPECT_EQ(ReadProfile(file, "One", nullptr), std::string("C\0", 2));
}

INSTANTIATE_TEST_SUITE_P(AllReleases, Favorites, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
