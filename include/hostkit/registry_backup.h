/// \file
/// RegistryBackup: collects registry keys and writes them, with their values and subkeys, to one
/// file that the registry editor can import: "REGEDIT4" in the ANSI code page, or version 5.00 in
/// UTF-16 on Windows 2000 and XP.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

/// One collected key: its path below the root and the root handle.
class HOSTKIT_API RegistryBackupKey {
 public:
  /// An empty path below a null root.
  RegistryBackupKey();
  /// The key `keyPath` below `keyRoot`.
  RegistryBackupKey(const wstring& keyPath, HKEY keyRoot);
  ///@{
  /// Copies and destroys the record.
  RegistryBackupKey(const RegistryBackupKey& other);
  RegistryBackupKey& operator=(const RegistryBackupKey& other);
  virtual ~RegistryBackupKey();
  ///@}

  wstring path;  ///< the key's path below the root, without a trailing backslash
  HKEY root;     ///< the predefined root (HKEY_LOCAL_MACHINE, ...)
};

class RegistryBackup_impl;

/// Collects registry keys and writes them with their values and subkeys to one file the
/// registry editor can import: REGEDIT4 (ANSI) on Windows 9x and NT 4, version 5.00 (UTF-16)
/// on Windows 2000 and XP.
class HOSTKIT_API RegistryBackup {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  RegistryBackup();
  RegistryBackup(const RegistryBackup& other);
  RegistryBackup& operator=(const RegistryBackup& other);
  ~RegistryBackup();
  ///@}

  /// Appends a key to the list; trailing backslashes and spaces of `path` are dropped.
  bool AddRegistryKey(HKEY root, const WCHAR* path);
  /// Does nothing and answers false: keys are only ever added or cleared all at once.
  bool RemoveRegistryKey(HKEY root, const WCHAR* path);
  /// Empties the list; always true.
  bool ClearRegistryKeys();

  /// Writes every listed key, its values and its subkeys, depth first, to `file`. False only
  /// when the file cannot be opened; keys that cannot be opened are left out.
  bool SaveRegistry(const WCHAR* file);

 private:
  Pimpl<RegistryBackup_impl> impl_;
};

}  // namespace Hostkit
