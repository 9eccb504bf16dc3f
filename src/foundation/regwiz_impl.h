// RegWiz_impl: the registry operations behind the RegWiz shell. Stateless.
#pragma once

#include <string>
#include <vector>

#include "hostkit/win_types.h"

namespace Hostkit {

class RegWiz_impl {
 public:
  bool DoesKeyExist(HKEY root, const char* path);
  bool DoesKeyExist(HKEY root, const WCHAR* path);
  bool DoesValNameExist(HKEY root, const char* path, const char* name);
  bool DoesValNameExist(HKEY root, const WCHAR* path, const WCHAR* name);

  bool GetSubKeyNames(HKEY root, const char* path, std::vector<std::string>& names);
  bool GetSubKeyNames(HKEY root, const WCHAR* path, std::vector<wstring>& names);
  bool GetValNames(HKEY root, const char* path, std::vector<std::string>& names);
  bool GetValNames(HKEY root, const WCHAR* path, std::vector<wstring>& names);

  bool GetKeyVal(HKEY root, const char* path, const char* name, std::string& value);
  bool GetKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, wstring& value);
  bool SetKeyVal(HKEY root, const char* path, const char* name, const char* value);
  bool SetKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, const WCHAR* value);

  bool GetMultiStringKeyVal(HKEY root, const char* path, const char* name,
                            std::vector<std::string>& values);
  bool GetMultiStringKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                            std::vector<wstring>& values);
  bool SetMultiStringKeyVal(HKEY root, const char* path, const char* name,
                            const std::vector<std::string>& values);
  bool SetMultiStringKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                            const std::vector<wstring>& values);

  bool GetDwordKeyVal(HKEY root, const char* path, const char* name, unsigned long& value);
  bool GetDwordKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, unsigned long& value);
  bool SetDwordKeyVal(HKEY root, const char* path, const char* name, unsigned long value);
  bool SetDwordKeyVal(HKEY root, const WCHAR* path, const WCHAR* name, unsigned long value);

  bool GetBinaryKeyVal(HKEY root, const char* path, const char* name,
                       std::vector<unsigned char>& value);
  bool GetBinaryKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                       std::vector<unsigned char>& value);
  bool SetBinaryKeyVal(HKEY root, const char* path, const char* name,
                       const std::vector<unsigned char>& value);
  bool SetBinaryKeyVal(HKEY root, const WCHAR* path, const WCHAR* name,
                       const std::vector<unsigned char>& value);

  bool DeleteKeyVal(HKEY root, const char* path, const char* name);
  bool DeleteKeyVal(HKEY root, const WCHAR* path, const WCHAR* name);
  bool DeleteKey(HKEY root, const char* path);
  bool DeleteKey(HKEY root, const WCHAR* path);
  bool CreateKey(HKEY root, const char* path);
  bool CreateKey(HKEY root, const WCHAR* path);

  std::vector<std::string> GetAllSubKeys(HKEY root, const char* path, const char* name,
                                         const char* pattern);
  std::vector<wstring> GetAllSubKeys(HKEY root, const WCHAR* path, const WCHAR* name,
                                     const WCHAR* pattern);
};

}  // namespace Hostkit
