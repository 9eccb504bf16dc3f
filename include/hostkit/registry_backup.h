// RegistryBackup: collects registry keys and writes them, with their values and subkeys, to one
// file that the registry editor can import: "REGEDIT4" in the ANSI code page, or version 5.00 in
// UTF-16 on Windows 2000 and XP.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

// One collected key: its path below the root and the root handle.
class HOSTKIT_API RegistryBackupKey {
 public:
  RegistryBackupKey();
  RegistryBackupKey(const wstring& keyPath, HKEY keyRoot);
  RegistryBackupKey(const RegistryBackupKey& other);
  RegistryBackupKey& operator=(const RegistryBackupKey& other);
  virtual ~RegistryBackupKey();

  wstring path;
  HKEY root;
};

class RegistryBackup_impl;

class HOSTKIT_API RegistryBackup {
 public:
  RegistryBackup();
  RegistryBackup(const RegistryBackup& other);
  RegistryBackup& operator=(const RegistryBackup& other);
  ~RegistryBackup();

  // Appends a key to the list; trailing backslashes and spaces of `path` are dropped.
  bool AddRegistryKey(HKEY root, const WCHAR* path);
  // Does nothing and answers false: keys are only ever added or cleared all at once.
  bool RemoveRegistryKey(HKEY root, const WCHAR* path);
  bool ClearRegistryKeys();
  // Writes every listed key, its values and its subkeys, depth first, to `file`. False only
  // when the file cannot be opened; keys that cannot be opened are left out.
  bool SaveRegistry(const WCHAR* file);

 private:
  Pimpl<RegistryBackup_impl> impl_;
};

}  // namespace Hostkit
