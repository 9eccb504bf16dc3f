/// \file
/// RegWiz: the library's one wrapper around the registry. Every operation opens its key,
/// does one thing and closes the key again; writes never create a missing key.
#pragma once

#include <string>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class RegWiz_impl;

/// The library's registry access: every operation opens the key, acts and closes it again (reads
/// with KEY_READ, writes with KEY_ALL_ACCESS). A write never creates a missing key: call
/// CreateKey first. On Windows 9x and NT 4 the wide forms convert their texts to the ANSI code
/// page and take the narrow path.
class HOSTKIT_API RegWiz {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  RegWiz();
  RegWiz(const RegWiz& other);
  RegWiz& operator=(const RegWiz& other);
  ~RegWiz();
  ///@}

  ///@{
  /// Whether the key can be opened for reading. (On Windows 9x and NT 4 a wide path that the
  /// code page cannot hold counts as existing.)
  bool DoesKeyExist(HKEY root, const char* path);
  bool DoesKeyExist(HKEY root, const WCHAR* path);
  ///@}
  ///@{
  /// Whether the key has a value of that name (null or empty: the default value).
  bool DoesValNameExist(HKEY root, const char* path, const char* name);
  bool DoesValNameExist(HKEY root, const WCHAR* path, const WCHAR* name);
  ///@}

  ///@{
  /// Replaces `names` by the key's subkey names, sorted by code unit. False when the key cannot
  /// be opened.
  bool GetSubKeyNames(HKEY root, const char* path, std::vector<std::string>& names);
  bool GetSubKeyNames(HKEY root, const WCHAR* path, std::vector<wstring>& names);
  ///@}
  ///@{
  /// Replaces `names` by the key's value names, sorted by code unit. False when the key does
  /// not exist.
  bool GetValNames(HKEY root, const char* path, std::vector<std::string>& names);
  bool GetValNames(HKEY root, const WCHAR* path, std::vector<wstring>& names);
  ///@}

  ///@{
  /// Reads a text value (up to its first zero; the stored type is not checked). False when the
  /// key or the value is missing (a missing value also empties `value`).

  bool GetKeyVal(HKEY root, const char* path, const char* name, std::string& value);
  bool GetKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, wstring& value);
  ///@}
  ///@{
  /// Writes a REG_SZ value into an existing key; false when the key is missing.
  bool SetKeyVal(HKEY root, const char* path, const char* name, const char* value);
  bool SetKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, const WCHAR* value);
  ///@}

  ///@{
  /// Replaces `values` by the strings of a REG_MULTI_SZ value. False when the key or value is
  /// missing or the value is longer than 1000 bytes.
  bool GetMultiStringKeyVal(HKEY root, const char* path, const char* name,
                            std::vector<std::string>& values);
  bool GetMultiStringKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                            std::vector<wstring>& values);
  ///@}
  ///@{
  /// Writes a REG_MULTI_SZ value into an existing key (an empty list writes one zero).
  bool SetMultiStringKeyVal(HKEY root, const char* path, const char* name,
                            const std::vector<std::string>& values);
  bool SetMultiStringKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                            const std::vector<wstring>& values);
  ///@}

  ///@{
  /// Reads a 32-bit value (the stored type is not checked); false when it is missing.
  bool GetDwordKeyVal(HKEY root, const char* path, const char* name, unsigned long& value);
  bool GetDwordKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, unsigned long& value);
  ///@}
  ///@{
  /// Writes a REG_DWORD value into an existing key.
  bool SetDwordKeyVal(HKEY root, const char* path, const char* name, unsigned long value);
  bool SetDwordKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, unsigned long value);
  ///@}

  ///@{
  /// Replaces `value` by the bytes of a value; false for a missing or empty value.
  bool GetBinaryKeyVal(HKEY root, const char* path, const char* name,
                       std::vector<unsigned char>& value);
  bool GetBinaryKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                       std::vector<unsigned char>& value);
  ///@}
  ///@{
  /// Writes a REG_BINARY value into an existing key.
  bool SetBinaryKeyVal(HKEY root, const char* path, const char* name,
                       const std::vector<unsigned char>& value);
  bool SetBinaryKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                       const std::vector<unsigned char>& value);
  ///@}

  ///@{
  /// Deletes a value; false when the key cannot be opened for writing or the value is missing.
  bool DeleteKeyVal(HKEY root, const char* path, const char* name);
  bool DeleteKeyVal(HKEY root, const WCHAR* path, const WCHAR* name);
  ///@}
  ///@{
  /// Deletes the key with all its subkeys, on both families. Always true (also for a missing
  /// key).
  bool DeleteKey(HKEY root, const char* path);
  bool DeleteKey(HKEY root, const WCHAR* path);
  ///@}
  ///@{
  /// Creates the key and any missing keys above it; true when it exists afterwards.
  bool CreateKey(HKEY root, const char* path);
  bool CreateKey(HKEY root, const WCHAR* path);
  ///@}

  /// Key paths at or below `path` (depth first, registry order) that have the value `name`
  /// matching `pattern`; an empty pattern accepts any key that has the value at all.
  /// The pattern is matched with RegExpMatch.
  ///@{
  std::vector<std::string> GetAllSubKeys(HKEY root, const char* path, const char* name,
                                         const char* pattern);
  std::vector<wstring> GetAllSubKeys(HKEY root, const WCHAR* path, const WCHAR* name,
                                     const WCHAR* pattern);
  ///@}

 private:
  Pimpl<RegWiz_impl> impl_;
};

}  // namespace Hostkit
