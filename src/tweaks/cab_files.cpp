// CabFiles: Windows 9x's set-up source folder, the folder it replaced, and the current user's
// list of recent install locations.
#include "hostkit/cab_files.h"

#include <string>

#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "hostkit/regwiz.h"

namespace Hostkit {

class CabFiles_impl {
 public:
  static void SetWinCabsLocation(const char* folder);
  static void RestoreWinCabsLocation();
};

template class Pimpl<CabFiles_impl>;

namespace {

constexpr const char* kSetup = "Software\\Microsoft\\Windows\\CurrentVersion\\Setup";
constexpr const char* kSourcePath = "SourcePath";
constexpr const char* kRemembered = "Software\\Tavrin\\Dorsel";
constexpr const char* kOldSourcePath = "OldSourcePath";
// Directly under the user's root, where Windows' set-up keeps it.
constexpr const char* kMru = "InstallLocationsMRU";
constexpr const char* kMruList = "MRUList";
constexpr std::size_t kMruCapacity = 5;

std::string ReadText(RegWiz& registry, HKEY root, const char* path, const char* name) {
  std::string text;
  if (!registry.GetKeyVal(root, path, name, text)) {
    text.clear();
  }
  return text;
}

// Puts `folder` at the front of the list: an entry already holding it moves there; otherwise
// the first free letter takes it, or, when the list is full, the least recently used one.
void RememberInstallLocation(RegWiz& registry, const std::string& folder) {
  if (!registry.DoesKeyExist(HKEY_CURRENT_USER, kMru)) {
    registry.CreateKey(HKEY_CURRENT_USER, kMru);
  }
  const std::string order = ReadText(registry, HKEY_CURRENT_USER, kMru, kMruList);
  for (const char letter : order) {
    const std::string name(1, letter);
    std::string remembered;
    if (registry.GetKeyVal(HKEY_CURRENT_USER, kMru, name.c_str(), remembered) &&
        remembered == folder) {
      std::string moved = name;
      for (const char other : order) {
        if (other != letter) {
          moved += other;
        }
      }
      registry.SetKeyVal(HKEY_CURRENT_USER, kMru, kMruList, moved.c_str());
      return;
    }
  }
  char letter = 'a';
  std::string newOrder;
  if (order.size() >= kMruCapacity) {
    letter = order.back();
    newOrder = letter + order.substr(0, order.size() - 1);
  } else {
    while (order.find(letter) != std::string::npos) {
      ++letter;
    }
    newOrder = letter + order;
  }
  registry.SetKeyVal(HKEY_CURRENT_USER, kMru, kMruList, newOrder.c_str());
  registry.SetKeyVal(HKEY_CURRENT_USER, kMru, std::string(1, letter).c_str(), folder.c_str());
}

}  // namespace

void CabFiles_impl::SetWinCabsLocation(const char* folder) {
  if (folder == nullptr || !OS().IsWin9x()) {
    return;
  }
  RegWiz registry;
  const std::string old = ReadText(registry, HKEY_LOCAL_MACHINE, kSetup, kSourcePath);
  registry.SetKeyVal(HKEY_LOCAL_MACHINE, kSetup, kSourcePath, folder);
  // Setting the same folder again keeps the location from before the first change.
  if (old != folder) {
    if (!registry.DoesKeyExist(HKEY_LOCAL_MACHINE, kRemembered)) {
      registry.CreateKey(HKEY_LOCAL_MACHINE, "Software\\Tavrin");
      registry.CreateKey(HKEY_LOCAL_MACHINE, kRemembered);
    }
    registry.SetKeyVal(HKEY_LOCAL_MACHINE, kRemembered, kOldSourcePath, old.c_str());
  }
  RememberInstallLocation(registry, folder);
}

void CabFiles_impl::RestoreWinCabsLocation() {
  if (!OS().IsWin9x()) {
    return;
  }
  RegWiz registry;
  std::string old;
  if (registry.GetKeyVal(HKEY_LOCAL_MACHINE, kRemembered, kOldSourcePath, old)) {
    registry.SetKeyVal(HKEY_LOCAL_MACHINE, kSetup, kSourcePath, old.c_str());
    registry.DeleteKeyVal(HKEY_LOCAL_MACHINE, kRemembered, kOldSourcePath);
  }
}

CabFiles::CabFiles() = default;
CabFiles::CabFiles(const CabFiles& other) = default;
CabFiles& CabFiles::operator=(const CabFiles& other) = default;
CabFiles::~CabFiles() = default;

void CabFiles::SetWinCabsLocation(const char* folder) {
  Forward(impl_, false, [&](CabFiles_impl&) {
    CabFiles_impl::SetWinCabsLocation(folder);
    return true;
  });
}
void CabFiles::RestoreWinCabsLocation() {
  Forward(impl_, false, [](CabFiles_impl&) {
    CabFiles_impl::RestoreWinCabsLocation();
    return true;
  });
}

}  // namespace Hostkit
