// Version, language, module and path facts of the simulated machine, and the thread's last
// error.
#include "platform/system_info.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "hostkit/sim/machine.h"
#include "platform/sim/shell/host_paths.h"

namespace Hostkit::sim {

namespace {

thread_local DWORD lastError = ERROR_SUCCESS;

constexpr DWORD kBasicVersionSize = sizeof(OSVERSIONINFOA);
constexpr DWORD kExtendedVersionSize = sizeof(OSVERSIONINFOEXA);
static_assert(kBasicVersionSize == 148 && kExtendedVersionSize == 156);

void FillVersion(const VersionRecord& record, OSVERSIONINFOA& info) {
  info.dwMajorVersion = record.major;
  info.dwMinorVersion = record.minor;
  info.dwBuildNumber = record.build;
  info.dwPlatformId = record.platform;
  std::memset(info.szCSDVersion, 0, sizeof info.szCSDVersion);
  record.csdVersion.copy(info.szCSDVersion, sizeof info.szCSDVersion - 1);
}

void FillExtendedVersion(const VersionRecord& record, OSVERSIONINFOEXA& info) {
  info.wServicePackMajor = record.servicePackMajor;
  info.wServicePackMinor = record.servicePackMinor;
  info.wSuiteMask = record.suiteMask;
  info.wProductType = record.productType;
  info.wReserved = 0;
}

// Short (8.3) names.
//
// A name that already fits 8.3 (one to eight characters, optionally a dot and one to three
// more, none of them a space or one of + , ; = [ ]) is its own short name, in the case the
// caller wrote it. Any other name gets an alias: the first six significant characters of the
// part before the last dot (spaces and dots dropped, letters upper-cased, + , ; = [ ] turned
// into "_"), "~", a number, and the first three significant characters after the last dot as
// the extension. The number is 1 for the first of the folder's long names that share that stem
// and extension in case-blind sorted order, 2 for the second, and so on; from 10 on the stem
// keeps five characters.

bool IsForbiddenInShortName(WCHAR c) {
  return c <= u' ' ||
         std::u16string_view(u"+,;=[]\"*/:<>?\\|").find(c) != std::u16string_view::npos;
}

bool IsShortName(const wstring& name) {
  const std::size_t dot = name.find(u'.');
  if (dot != wstring::npos && name.find(u'.', dot + 1) != wstring::npos) {
    return false;
  }
  const std::size_t baseLength = dot == wstring::npos ? name.size() : dot;
  const std::size_t extensionLength = dot == wstring::npos ? 0 : name.size() - dot - 1;
  if (baseLength == 0 || baseLength > 8 || extensionLength > 3 ||
      (dot != wstring::npos && extensionLength == 0)) {
    return false;
  }
  return std::none_of(name.begin(), name.end(),
                      [](WCHAR c) { return c != u'.' && IsForbiddenInShortName(c); });
}

wstring Significant(std::u16string_view text, std::size_t limit) {
  wstring kept;
  for (WCHAR c : text) {
    if (kept.size() == limit) {
      break;
    }
    if (c == u' ' || c == u'.') {
      continue;
    }
    if (c >= u'a' && c <= u'z') {
      c = static_cast<WCHAR>(c - u'a' + u'A');
    } else if (IsForbiddenInShortName(c)) {
      c = u'_';
    }
    kept.push_back(c);
  }
  return kept;
}

struct AliasParts {
  wstring stem;  // up to six characters
  wstring extension;
  bool operator==(const AliasParts&) const = default;
};

AliasParts SplitForAlias(const wstring& name) {
  const std::size_t dot = name.rfind(u'.');
  std::u16string_view view(name);
  if (dot != wstring::npos) {
    AliasParts parts{Significant(view.substr(0, dot), 6), Significant(view.substr(dot + 1), 3)};
    if (!parts.stem.empty()) {
      return parts;
    }
  }
  return {Significant(view, 6), wstring()};
}

wstring ShortName(const wstring& name, const std::vector<wstring>& siblings) {
  if (IsShortName(name)) {
    return name;
  }
  const AliasParts parts = SplitForAlias(name);
  std::size_t number = 1;
  for (const auto& sibling : siblings) {
    if (FileNameLess(sibling, name) && !IsShortName(sibling) && SplitForAlias(sibling) == parts) {
      ++number;
    }
  }
  const std::string decimal = std::to_string(number);
  const wstring digits(decimal.begin(), decimal.end());
  wstring alias = parts.stem.substr(0, std::min<std::size_t>(6, 7 - digits.size()));
  alias += u'~';
  alias += digits;
  if (!parts.extension.empty()) {
    alias += u'.';
    alias += parts.extension;
  }
  return alias;
}

std::vector<wstring> FolderNames(const std::filesystem::path& dir) {
  std::vector<wstring> names;
  std::error_code error;
  for (std::filesystem::directory_iterator it(dir, error), end; !error && it != end;
       it.increment(error)) {
    names.push_back(it->path().filename().u16string());
  }
  return names;
}

// The short form of an existing absolute path, or the error that GetShortPathName reports.
std::optional<wstring> ShortPath(const MachineFacts& facts, const wstring& longPath, DWORD& error) {
  error = ERROR_PATH_NOT_FOUND;
  auto parsed = ParseWindowsPath(longPath);
  if (!parsed) {
    return std::nullopt;
  }
  auto dir = DriveFolder(facts, parsed->drive);
  std::error_code ignored;
  if (!dir || !std::filesystem::is_directory(*dir, ignored)) {
    return std::nullopt;
  }
  wstring shortPath{parsed->drive, u':'};
  if (parsed->components.empty()) {
    shortPath += u'\\';
  }
  for (std::size_t i = 0; i < parsed->components.size(); ++i) {
    const wstring& component = parsed->components[i];
    auto entry = FindEntryNoCase(*dir, component);
    if (!entry) {
      error = i + 1 == parsed->components.size() ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
      return std::nullopt;
    }
    const wstring stored = entry->filename().u16string();
    shortPath += u'\\';
    shortPath += IsShortName(component) ? component : ShortName(stored, FolderNames(*dir));
    dir = std::move(entry);
  }
  return shortPath;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

DWORD GetLastError() { return sim::lastError; }

void SetLastError(DWORD error) { sim::lastError = error; }

BOOL GetVersionExA(OSVERSIONINFOA* info) {
  const sim::VersionRecord& record = sim::ActiveMachine()->facts().version;
  if (info == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const DWORD size = info->dwOSVersionInfoSize;
  const bool extended = size == sim::kExtendedVersionSize && record.acceptsExtended;
  if (size != sim::kBasicVersionSize && !extended) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  if (!record.answers) {
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return FALSE;
  }
  sim::FillVersion(record, *info);
  if (extended) {
    sim::FillExtendedVersion(record, *reinterpret_cast<OSVERSIONINFOEXA*>(info));
  }
  return TRUE;
}

LANGID GetSystemDefaultLangID() { return sim::ActiveMachine()->facts().language; }

// Truncation as Windows XP and earlier do it: a path that does not fit is cut to `size`
// characters without a terminator and `size` is returned.
DWORD GetModuleFileNameA(HMODULE module, char* fileName, DWORD size) {
  if (module != nullptr) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return 0;
  }
  if (fileName == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  const std::string path = sim::ActiveMachine()->facts().modulePath;
  if (path.size() < size) {
    path.copy(fileName, path.size());
    fileName[path.size()] = '\0';
    return static_cast<DWORD>(path.size());
  }
  path.copy(fileName, size);
  return size;
}

// The short form's length without its terminator when it fits in `size` characters, else the
// size needed including the terminator (the buffer is then untouched); 0 on failure.
DWORD GetShortPathNameA(const char* longPath, char* shortPath, DWORD size) {
  try {
    auto wide = sim::WidenAnsiPath(longPath);
    if (!wide) {
      SetLastError(ERROR_INVALID_PARAMETER);
      return 0;
    }
    DWORD error = ERROR_SUCCESS;
    auto shortWide = sim::ShortPath(sim::ActiveMachine()->facts(), *wide, error);
    if (!shortWide) {
      SetLastError(error);
      return 0;
    }
    auto narrow = sim::NarrowToAnsi(*shortWide);
    if (!narrow) {
      SetLastError(ERROR_INVALID_PARAMETER);
      return 0;
    }
    if (shortPath == nullptr || narrow->size() >= size) {
      return static_cast<DWORD>(narrow->size() + 1);
    }
    narrow->copy(shortPath, narrow->size());
    shortPath[narrow->size()] = '\0';
    return static_cast<DWORD>(narrow->size());
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
  }
}

}  // namespace Hostkit::platform
