// Directory creation and search on the simulated machine, over the host folders that stand for
// its drives. Searches list "." and ".." in every folder but a drive's root, as Windows does,
// then the folder's entries in case-blind name order.
#include "platform/directories.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "hostkit/sim/machine.h"
#include "platform/sim/kernel/handle_table.h"
#include "platform/sim/shell/host_paths.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace fs = std::filesystem;

namespace {

struct FoundEntry {
  std::string name;  // ANSI
  bool directory = false;
  std::uintmax_t size = 0;
};

class DirectorySearch : public KernelObject {
 public:
  std::vector<FoundEntry> entries;
  std::size_t next = 0;
};

WCHAR Fold(WCHAR c) { return c >= u'A' && c <= u'Z' ? static_cast<WCHAR>(c - u'A' + u'a') : c; }

// Case-blind wildcard match: "*" any run, "?" any one character. "*.*" also matches names
// without a dot, as on Windows.
bool Matches(const wstring& pattern, const wstring& name) {
  if (pattern == u"*" || pattern == u"*.*") {
    return true;
  }
  std::size_t p = 0;
  std::size_t n = 0;
  std::size_t star = wstring::npos;
  std::size_t resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == u'?' || Fold(pattern[p]) == Fold(name[n]))) {
      ++p;
      ++n;
    } else if (p < pattern.size() && pattern[p] == u'*') {
      star = p++;
      resume = n;
    } else if (star != wstring::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == u'*') {
    ++p;
  }
  return p == pattern.size();
}

void Fill(const FoundEntry& entry, WIN32_FIND_DATAA& found) {
  std::memset(&found, 0, sizeof(found));
  found.dwFileAttributes = entry.directory ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE;
  found.nFileSizeLow = static_cast<DWORD>(entry.size);
  found.nFileSizeHigh = static_cast<DWORD>(entry.size >> 32);
  std::memcpy(found.cFileName, entry.name.c_str(), entry.name.size() + 1);
}

// The matching entries of the folder the pattern names; null when the folder does not exist.
std::unique_ptr<DirectorySearch> Search(const wstring& pattern) {
  const std::size_t separator = pattern.find_last_of(u"\\/");
  if (separator == wstring::npos) {
    return nullptr;
  }
  const wstring folder = pattern.substr(0, separator);
  const wstring namePattern = pattern.substr(separator + 1);
  auto parsed = ParseWindowsPath(folder);
  auto host = HostPath(ActiveMachine()->facts(), folder);
  std::error_code error;
  if (!parsed || !host || !fs::is_directory(*host, error)) {
    return nullptr;
  }
  auto search = std::make_unique<DirectorySearch>();
  if (!parsed->components.empty()) {
    for (const char* dots : {".", ".."}) {
      if (Matches(namePattern, wstring(dots, dots + std::strlen(dots)))) {
        search->entries.push_back({dots, true, 0});
      }
    }
  }
  std::vector<std::pair<wstring, FoundEntry>> listed;
  for (fs::directory_iterator it(*host, error), end; !error && it != end; it.increment(error)) {
    const wstring name = it->path().filename().u16string();
    auto ansi = NarrowToAnsi(name);
    if (!ansi || ansi->size() >= static_cast<std::size_t>(MAX_PATH) ||
        !Matches(namePattern, name)) {
      continue;  // a name the ANSI calls cannot report
    }
    std::error_code ignored;
    const bool directory = it->is_directory(ignored);
    listed.push_back({name, {*ansi, directory, directory ? 0 : it->file_size(ignored)}});
  }
  std::sort(listed.begin(), listed.end(),
            [](const auto& a, const auto& b) { return FileNameLess(a.first, b.first); });
  for (auto& entry : listed) {
    search->entries.push_back(std::move(entry.second));
  }
  return search;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

BOOL CreateDirectoryA(const char* path, SECURITY_ATTRIBUTES* /*security*/) {
  try {
    auto wide = sim::WidenAnsiPath(path);
    auto parsed = wide ? sim::ParseWindowsPath(*wide) : std::nullopt;
    auto host = wide ? sim::HostPath(sim::ActiveMachine()->facts(), *wide) : std::nullopt;
    if (!host || !parsed || parsed->components.empty()) {
      SetLastError(ERROR_PATH_NOT_FOUND);
      return FALSE;
    }
    std::error_code error;
    if (std::filesystem::exists(*host, error)) {
      SetLastError(ERROR_ALREADY_EXISTS);
      return FALSE;
    }
    if (!std::filesystem::is_directory(host->parent_path(), error) ||
        !std::filesystem::create_directory(*host, error)) {
      SetLastError(ERROR_PATH_NOT_FOUND);
      return FALSE;
    }
    return TRUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* found) {
  try {
    auto wide = sim::WidenAnsiPath(pattern);
    if (!wide || found == nullptr) {
      SetLastError(ERROR_INVALID_PARAMETER);
      return INVALID_HANDLE_VALUE;
    }
    std::shared_ptr<sim::DirectorySearch> search = sim::Search(*wide);
    if (!search) {
      SetLastError(ERROR_PATH_NOT_FOUND);
      return INVALID_HANDLE_VALUE;
    }
    if (search->entries.empty()) {
      SetLastError(ERROR_FILE_NOT_FOUND);
      return INVALID_HANDLE_VALUE;
    }
    sim::Fill(search->entries[0], *found);
    search->next = 1;
    HANDLE handle = sim::AddHandle(search);
    return handle != nullptr ? handle : INVALID_HANDLE_VALUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return INVALID_HANDLE_VALUE;
  }
}

BOOL FindNextFileA(HANDLE search, WIN32_FIND_DATAA* found) {
  auto object = sim::FindHandleAs<sim::DirectorySearch>(search);
  if (!object || found == nullptr) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  if (object->next >= object->entries.size()) {
    SetLastError(ERROR_NO_MORE_FILES);
    return FALSE;
  }
  sim::Fill(object->entries[object->next++], *found);
  return TRUE;
}

BOOL FindClose(HANDLE search) {
  if (!sim::FindHandleAs<sim::DirectorySearch>(search) || !sim::RemoveHandle(search)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  return TRUE;
}

}  // namespace Hostkit::platform
