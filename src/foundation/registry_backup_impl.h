// The list behind RegistryBackup and the writer of its registry file.
#pragma once

#include <cstdio>
#include <vector>

#include "hostkit/registry_backup.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class RegistryBackup_impl {
 public:
  bool AddRegistryKey(HKEY root, const WCHAR* path);
  bool ClearRegistryKeys();
  bool SaveRegistry(const WCHAR* file);

 private:
  std::vector<RegistryBackupKey> keys_;
};

namespace backup {

// How the file is written on the running release.
struct FileFormat {
  bool unicode = false;          // version 5.00 in UTF-16 (Windows 2000 and XP), else REGEDIT4
  bool rawLineBreaks = false;    // text values keep CR and LF unescaped (Windows 95)
  bool skipPerflibText = false;  // the localised performance-counter texts are left out (2000)
};

// Writes the header and then every key of `keys` with its subkeys to the open `file`.
void WriteRegistryFile(std::FILE* file, const FileFormat& format,
                       const std::vector<RegistryBackupKey>& keys);

}  // namespace backup

}  // namespace Hostkit
