// RegistryBackup: the shell, the key list and opening the file the keys are written to.
#include "hostkit/registry_backup.h"

#include <memory>
#include <string>

#include "foundation/registry_backup_impl.h"
#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "hostkit/strings.h"
#include "platform/files.h"

namespace Hostkit {

template class Pimpl<RegistryBackup_impl>;

RegistryBackupKey::RegistryBackupKey() : root(nullptr) {}
RegistryBackupKey::RegistryBackupKey(const wstring& keyPath, HKEY keyRoot)
    : path(keyPath), root(keyRoot) {}
RegistryBackupKey::RegistryBackupKey(const RegistryBackupKey& other) = default;
RegistryBackupKey& RegistryBackupKey::operator=(const RegistryBackupKey& other) = default;
RegistryBackupKey::~RegistryBackupKey() = default;

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { platform::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

// Opens the file for binary writing: by its wide name where the registry file is UTF-16
// (Windows 2000 and XP), by its ANSI name elsewhere.
FilePtr OpenForWriting(const WCHAR* file, bool unicode) {
  if (unicode) {
    return FilePtr(platform::_wfopen(file, HK_WIDE("wb")));
  }
  std::string ansi;
  if (!ConvertUnicodeToANSI(wstring(file), ansi)) {
    return nullptr;
  }
  return FilePtr(platform::fopen(ansi.c_str(), "wb"));
}

}  // namespace

bool RegistryBackup_impl::AddRegistryKey(HKEY root, const WCHAR* path) {
  if (path == nullptr) {
    return false;
  }
  // Trailing spaces, zero units and backslashes are dropped, so that the key line always
  // reads root, "\", path, and an empty path stands for the root itself.
  wstring stored(path);
  while (!stored.empty() &&
         (stored.back() == HK_WIDE(' ') || stored.back() == 0 || stored.back() == HK_WIDE('\\'))) {
    stored.pop_back();
  }
  keys_.emplace_back(stored, root);
  return true;
}

bool RegistryBackup_impl::ClearRegistryKeys() {
  keys_.clear();
  return true;
}

bool RegistryBackup_impl::SaveRegistry(const WCHAR* file) {
  if (file == nullptr) {
    return false;
  }
  OS os;
  backup::FileFormat format;
  format.unicode = os.IsWin2000() || os.IsWinXP();
  format.rawLineBreaks = os.IsWin95();
  format.skipPerflibText = os.IsWin2000();
  const FilePtr out = OpenForWriting(file, format.unicode);
  if (!out) {
    return false;
  }
  backup::WriteRegistryFile(out.get(), format, keys_);
  return true;
}

RegistryBackup::RegistryBackup() = default;
RegistryBackup::RegistryBackup(const RegistryBackup& other) = default;
RegistryBackup& RegistryBackup::operator=(const RegistryBackup& other) = default;
RegistryBackup::~RegistryBackup() = default;

bool RegistryBackup::AddRegistryKey(HKEY root, const WCHAR* path) {
  return Forward(impl_, false,
                 [&](RegistryBackup_impl& impl) { return impl.AddRegistryKey(root, path); });
}

bool RegistryBackup::RemoveRegistryKey(HKEY /*root*/, const WCHAR* /*path*/) { return false; }

bool RegistryBackup::ClearRegistryKeys() {
  return Forward(impl_, false, [&](RegistryBackup_impl& impl) { return impl.ClearRegistryKeys(); });
}

bool RegistryBackup::SaveRegistry(const WCHAR* file) {
  return Forward(impl_, false, [&](RegistryBackup_impl& impl) { return impl.SaveRegistry(file); });
}

}  // namespace Hostkit
