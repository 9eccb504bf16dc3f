// The current user's Internet Explorer Favorites: shortcut files "<name>.URL" below the
// Favorites folder, each an initialisation file whose "InternetShortcut" section holds the
// address under "URL". The folder comes from Shell32's SHGetSpecialFolderPathA, bound at run
// time for each operation because older Shell32 versions lack it.
#include <array>
#include <string>
#include <vector>

#include "hostkit/strings.h"
#include "inetclients/configure_ie_impl.h"
#include "platform/directories.h"
#include "platform/modules.h"
#include "platform/profile_strings.h"
#include "platform/shell_folders.h"

namespace Hostkit {

namespace {

const char* const kSection = "InternetShortcut";
const char* const kUrlKey = "URL";
const char* const kExtension = ".URL";
constexpr std::size_t kExtensionLength = 4;
// Room for the longest address Internet Explorer accepts (2083 characters) and its terminator.
constexpr DWORD kUrlBufferSize = 2084;

// The Favorites folder, narrow; false when Shell32 or its entry point is missing or the
// folder cannot be named.
bool FavoritesFolder(std::string& folder) {
  HMODULE shell = platform::LoadLibraryA(platform::kShell32);
  if (shell == nullptr) {
    return false;
  }
  // The entry point's real type, through the generic function type GetProcAddress answers.
  const auto entry = reinterpret_cast<platform::SHGetSpecialFolderPathAProc>(  // NOLINT
      reinterpret_cast<void (*)()>(                                            // NOLINT
          platform::GetProcAddress(shell, platform::kSHGetSpecialFolderPathA)));
  std::array<char, MAX_PATH> buffer{};
  const bool found =
      entry != nullptr && entry(nullptr, buffer.data(), platform::kFavoritesFolder, FALSE) != FALSE;
  platform::FreeLibrary(shell);
  if (found) {
    buffer.back() = '\0';
    folder = buffer.data();
  }
  return found;
}

bool IsShortcutName(const std::string& name) {
  if (name.size() <= kExtensionLength) {
    return false;
  }
  // File names are case-blind: "x.url" is as much a shortcut as "x.URL".
  for (std::size_t i = 0; i < kExtensionLength; ++i) {
    const char c = name[name.size() - kExtensionLength + i];
    const char upper = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    if (upper != kExtension[i]) {
      return false;
    }
  }
  return true;
}

// Appends the shortcuts of `folder` and its sub-folders; `prefix` is the folder's name relative
// to Favorites, ending in "\" (empty for Favorites itself). A folder that cannot be listed adds
// nothing.
int Walk(const std::string& folder, const std::string& prefix,
         std::vector<ConfigureIE::FavoriteLink>& links) {
  WIN32_FIND_DATAA found{};
  HANDLE search = platform::FindFirstFileA((folder + "\\*.*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    return 0;
  }
  int count = 0;
  do {
    const std::string name = found.cFileName;
    if (name == "." || name == "..") {
      continue;
    }
    const std::string path = folder + "\\" + name;
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      count += Walk(path, prefix + name + "\\", links);
    } else if (IsShortcutName(name)) {
      std::vector<char> url(kUrlBufferSize);
      platform::GetPrivateProfileStringA(kSection, kUrlKey, "", url.data(), kUrlBufferSize,
                                         path.c_str());
      ConfigureIE::FavoriteLink link;
      if (ConvertANSIToUnicode(url.data(), link.url) &&
          ConvertANSIToUnicode(prefix + name.substr(0, name.size() - kExtensionLength),
                               link.name)) {
        links.push_back(std::move(link));
        ++count;
      }
    }
  } while (platform::FindNextFileA(search, &found) != FALSE);
  platform::FindClose(search);
  return count;
}

}  // namespace

bool ConfigureIE_impl::AddFavorite(const ConfigureIE::FavoriteLink& link) {
  std::string folder;
  wstring wideFolder;
  if (!FavoritesFolder(folder) || !ConvertANSIToUnicode(folder, wideFolder)) {
    return false;
  }
  const wstring path = wideFolder + HK_WIDE("\\") + link.name + HK_WIDE(".URL");
  // Every "\" from the end of the Favorites folder on ends a folder the file lives in; an
  // existing one is no error.
  for (std::size_t at = path.find(u'\\', wideFolder.size()); at != wstring::npos;
       at = path.find(u'\\', at + 1)) {
    std::string parent;
    if (ConvertUnicodeToANSI(path.substr(0, at), parent)) {
      platform::CreateDirectoryA(parent.c_str(), nullptr);
    }
  }
  std::string narrowPath;
  std::string narrowUrl;
  return ConvertUnicodeToANSI(path, narrowPath) && ConvertUnicodeToANSI(link.url, narrowUrl) &&
         platform::WritePrivateProfileStringA(kSection, kUrlKey, narrowUrl.c_str(),
                                              narrowPath.c_str()) != FALSE;
}

int ConfigureIE_impl::GetFavorites(std::vector<ConfigureIE::FavoriteLink>& links) {
  std::string folder;
  return FavoritesFolder(folder) ? Walk(folder, "", links) : 0;
}

}  // namespace Hostkit
