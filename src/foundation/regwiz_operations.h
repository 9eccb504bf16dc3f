// The registry operations of RegWiz, written once for narrow (char) and wide (WCHAR) text.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "foundation/compiled_pattern.h"
#include "foundation/registry_calls.h"

namespace Hostkit::registry {

template <class Ch>
using Text = std::basic_string<Ch>;

// Enumeration name buffers hold 259 characters: longer than any registry key name.
constexpr DWORD kNameBufferChars = 259;

template <class Ch>
bool DoesKeyExist(HKEY root, const Ch* path) {
  return OpenKey<Ch>(root, path, KEY_READ).ok();
}

template <class Ch>
bool DoesValNameExist(HKEY root, const Ch* path, const Ch* name) {
  if (!DoesKeyExist(root, path)) {
    return false;
  }
  OpenKey<Ch> key(root, path, KEY_READ);
  return Calls<Ch>::Query(key.get(), name, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

template <class Ch>
bool GetSubKeyNames(HKEY root, const Ch* path, std::vector<Text<Ch>>& names) {
  if (root == nullptr) {
    return false;
  }
  OpenKey<Ch> key(root, path, KEY_READ);
  if (!key.ok()) {
    return false;
  }
  names.clear();
  std::array<Ch, kNameBufferChars + 1> name{};
  for (DWORD index = 0;; ++index) {
    DWORD size = kNameBufferChars;
    if (Calls<Ch>::EnumKey(key.get(), index, name.data(), &size) != ERROR_SUCCESS) {
      break;
    }
    names.emplace_back(name.data(), size);
  }
  std::sort(names.begin(), names.end());
  return true;
}

template <class Ch>
bool GetValNames(HKEY root, const Ch* path, std::vector<Text<Ch>>& names) {
  if (!DoesKeyExist(root, path)) {
    return false;
  }
  OpenKey<Ch> key(root, path, KEY_READ);
  names.clear();
  std::array<Ch, kNameBufferChars + 1> name{};
  for (DWORD index = 0;; ++index) {
    DWORD size = kNameBufferChars;
    const LONG result = Calls<Ch>::EnumValueName(key.get(), index, name.data(), &size);
    if (result == ERROR_NO_MORE_ITEMS) {
      break;
    }
    // A name too long for the buffer is listed as the buffer stands.
    names.emplace_back(name.data());
    // Any other failure (a deleted key, a bad handle) repeats at every index.
    if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA) {
      break;
    }
  }
  std::sort(names.begin(), names.end());
  return true;
}

// Text up to the first zero unit of `count` units.
template <class Ch>
Text<Ch> TextUpToZero(const Ch* data, size_t count) {
  const Ch* end = std::find(data, data + count, Ch{0});
  return Text<Ch>(data, end);
}

// Reads any value of the open `key` as text: first into a 260-unit buffer offering 259 bytes,
// then, when the value is larger, into a buffer of the size the registry reports.
template <class Ch>
bool ReadKeyText(HKEY key, const Ch* name, Text<Ch>& value) {
  std::array<Ch, 260> buffer{};
  DWORD size = 259;
  LONG result = Calls<Ch>::Query(key, name, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &size);
  if (result == ERROR_SUCCESS) {
    value = TextUpToZero(buffer.data(), buffer.size());
    return true;
  }
  if (result != ERROR_MORE_DATA) {
    value.clear();
    return false;
  }
  // The narrow form retries with the reported size plus one byte, the wide form with twice the
  // reported size plus two bytes; either leaves room for a terminating zero.
  const DWORD retryBytes = sizeof(Ch) == 1 ? size + 1 : 2 * size + 2;
  std::vector<Ch> larger((retryBytes + sizeof(Ch) - 1) / sizeof(Ch), Ch{0});
  DWORD largerSize = retryBytes;
  result =
      Calls<Ch>::Query(key, name, nullptr, reinterpret_cast<BYTE*>(larger.data()), &largerSize);
  if (result != ERROR_SUCCESS) {
    value.clear();
    return false;
  }
  value = TextUpToZero(larger.data(), larger.size());
  return true;
}

template <class Ch>
bool GetKeyVal(HKEY root, const Ch* path, const Ch* name, Text<Ch>& value) {
  if (!DoesKeyExist(root, path)) {
    return false;
  }
  const OpenKey<Ch> key(root, path, KEY_READ);
  return ReadKeyText(key.get(), name, value);
}

template <class Ch>
bool SetValue(HKEY root, const Ch* path, const Ch* name, DWORD type, const void* data, DWORD size) {
  if (!DoesKeyExist(root, path)) {
    return false;
  }
  OpenKey<Ch> key(root, path, KEY_ALL_ACCESS);
  return Calls<Ch>::Set(key.get(), name, type, static_cast<const BYTE*>(data), size) ==
         ERROR_SUCCESS;
}

// Stores the text as REG_SZ without its terminating zero.
template <class Ch>
bool SetKeyVal(HKEY root, const Ch* path, const Ch* name, const Ch* value) {
  if (value == nullptr) {
    return false;
  }
  const auto bytes = static_cast<DWORD>(std::char_traits<Ch>::length(value) * sizeof(Ch));
  return SetValue(root, path, name, REG_SZ, value, bytes);
}

// Reads a list of zero-terminated strings from a fixed 1000-byte buffer; longer values fail.
template <class Ch>
bool GetMultiStringKeyVal(HKEY root, const Ch* path, const Ch* name,
                          std::vector<Text<Ch>>& values) {
  if (!DoesKeyExist(root, path)) {
    return false;
  }
  constexpr DWORD kBufferBytes = 1000;
  std::array<Ch, kBufferBytes / sizeof(Ch) + 1> buffer{};
  DWORD size = kBufferBytes;
  LONG result;
  {
    OpenKey<Ch> key(root, path, KEY_READ);
    result =
        Calls<Ch>::Query(key.get(), name, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &size);
  }
  values.clear();
  if (result != ERROR_SUCCESS) {
    return false;
  }
  // The buffer keeps one zero unit beyond the 1000 bytes, so every string ends inside it.
  const Ch* const end = buffer.data() + buffer.size() - 1;
  for (const Ch* item = buffer.data(); item < end && *item != Ch{0};) {
    Text<Ch> text = TextUpToZero(item, static_cast<size_t>(end - item));
    item += text.size() + 1;
    values.push_back(std::move(text));
  }
  return true;
}

// Writes the items, each followed by a zero, and one more zero; the size passed is in bytes.
template <class Ch>
bool SetMultiStringKeyVal(HKEY root, const Ch* path, const Ch* name,
                          const std::vector<Text<Ch>>& values) {
  Text<Ch> data;
  for (const auto& item : values) {
    data += item;
    data.push_back(Ch{0});
  }
  data.push_back(Ch{0});
  return SetValue(root, path, name, REG_MULTI_SZ, data.data(),
                  static_cast<DWORD>(data.size() * sizeof(Ch)));
}

// Reads four bytes whatever the stored type.
template <class Ch>
bool GetDwordKeyVal(HKEY root, const Ch* path, const Ch* name, unsigned long& value) {
  if (!DoesKeyExist(root, path)) {
    return false;
  }
  OpenKey<Ch> key(root, path, KEY_READ);
  DWORD data = 0;
  DWORD size = sizeof(data);
  if (Calls<Ch>::Query(key.get(), name, nullptr, reinterpret_cast<BYTE*>(&data), &size) !=
      ERROR_SUCCESS) {
    return false;
  }
  value = data;
  return true;
}

template <class Ch>
bool SetDwordKeyVal(HKEY root, const Ch* path, const Ch* name, unsigned long value) {
  const auto data = static_cast<DWORD>(value);
  return SetValue(root, path, name, REG_DWORD, &data, sizeof(data));
}

// Reads any value as bytes. An empty or missing value fails: the size probe must report more data.
template <class Ch>
bool GetBinaryKeyVal(HKEY root, const Ch* path, const Ch* name, std::vector<unsigned char>& value) {
  value.clear();
  if (!DoesKeyExist(root, path)) {
    return false;
  }
  OpenKey<Ch> key(root, path, KEY_READ);
  BYTE probe = 0;
  DWORD size = 0;
  if (Calls<Ch>::Query(key.get(), name, nullptr, &probe, &size) != ERROR_MORE_DATA) {
    return false;
  }
  std::vector<unsigned char> data(size);
  if (Calls<Ch>::Query(key.get(), name, nullptr, data.data(), &size) != ERROR_SUCCESS) {
    return false;
  }
  data.resize(std::min<size_t>(size, data.size()));
  value.insert(value.end(), data.begin(), data.end());
  return true;
}

template <class Ch>
bool SetBinaryKeyVal(HKEY root, const Ch* path, const Ch* name,
                     const std::vector<unsigned char>& value) {
  return SetValue(root, path, name, REG_BINARY, value.data(), static_cast<DWORD>(value.size()));
}

template <class Ch>
bool DeleteKeyVal(HKEY root, const Ch* path, const Ch* name) {
  OpenKey<Ch> key(root, path, KEY_ALL_ACCESS);
  if (!key.ok()) {
    return false;
  }
  return Calls<Ch>::DeleteValue(key.get(), name) == ERROR_SUCCESS;
}

// Joins a key path and a subkey name; under the root itself the name stands alone.
template <class Ch>
Text<Ch> JoinPath(const Text<Ch>& path, const Text<Ch>& name) {
  if (path.empty()) {
    return name;
  }
  Text<Ch> joined = path;
  joined.push_back(Ch{'\\'});
  joined += name;
  return joined;
}

template <class Ch>
Text<Ch> PathText(const Ch* path) {
  return path != nullptr ? Text<Ch>(path) : Text<Ch>();
}

// Deletes the key and everything below it. The NT family refuses to delete a key that has
// subkeys, so the subkeys go first. True in every case.
//
// A subkey's path is always the path, "\" and the name, even below an empty path: the registry
// refuses "\Software" as a bad path name, so an empty or null path never takes a root's keys
// with it.
template <class Ch>
bool DeleteKey(HKEY root, const Ch* path) {
  if (!DoesKeyExist(root, path)) {
    return true;
  }
  if (Calls<Ch>::DeleteKey(root, path) == ERROR_SUCCESS) {
    return true;
  }
  std::vector<Text<Ch>> names;
  GetSubKeyNames(root, path, names);
  const Text<Ch> parent = PathText(path);
  for (const auto& name : names) {
    Text<Ch> child = parent;
    child.push_back(Ch{'\\'});
    child += name;
    DeleteKey(root, child.c_str());
  }
  Calls<Ch>::DeleteKey(root, path);
  return true;
}

template <class Ch>
bool CreateKey(HKEY root, const Ch* path) {
  if (DoesKeyExist(root, path)) {
    return true;
  }
  HKEY key = nullptr;
  const LONG result = Calls<Ch>::Create(root, path, &key);
  if (key != nullptr) {
    platform::RegCloseKey(key);
  }
  return result == ERROR_SUCCESS;
}

// Visits the open `key` at `path` and, depth first in registry order, every key below it,
// collecting those whose value `name` matches `pattern` (or that have the value at all, for an
// empty pattern). Each key is opened once, below its parent's open key, and read through it.
template <class Ch>
void CollectMatchingKeys(HKEY key, const Text<Ch>& path, const Ch* name,
                         const CompiledPattern& pattern, std::vector<Text<Ch>>& found) {
  if (Calls<Ch>::Query(key, name, nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
    Text<Ch> value;
    ReadKeyText(key, name, value);
    if (pattern.Matches(value.c_str())) {
      found.push_back(path);
    }
  }
  std::array<Ch, kNameBufferChars + 1> subKey{};
  for (DWORD index = 0;; ++index) {
    DWORD size = kNameBufferChars;
    if (Calls<Ch>::EnumKey(key, index, subKey.data(), &size) != ERROR_SUCCESS) {
      break;
    }
    const OpenKey<Ch> child(key, subKey.data(), KEY_READ);
    if (child.ok()) {
      CollectMatchingKeys(child.get(), JoinPath(path, Text<Ch>(subKey.data(), size)), name, pattern,
                          found);
    }
  }
}

template <class Ch>
std::vector<Text<Ch>> GetAllSubKeys(HKEY root, const Ch* path, const Ch* name, const Ch* pattern) {
  std::vector<Text<Ch>> found;
  if (pattern == nullptr) {
    return found;
  }
  const OpenKey<Ch> key(root, path, KEY_READ);
  if (key.ok()) {
    CollectMatchingKeys(key.get(), PathText(path), name, CompiledPattern(pattern), found);
  }
  return found;
}

}  // namespace Hostkit::registry
