// Mapping of the simulated machine's Windows paths onto host folders.
#include "platform/sim/shell/host_paths.h"

#include <algorithm>
#include <system_error>

#include "platform/text.h"

namespace Hostkit::sim {

namespace fs = std::filesystem;

namespace {

bool IsSeparator(WCHAR c) { return c == u'\\' || c == u'/'; }

bool IsDriveLetter(WCHAR c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); }

WCHAR FoldCase(WCHAR c) { return c >= u'A' && c <= u'Z' ? static_cast<WCHAR>(c - u'A' + u'a') : c; }

}  // namespace

std::optional<WindowsPath> ParseWindowsPath(const wstring& path) {
  if (path.size() < 2 || !IsDriveLetter(path[0]) || path[1] != u':' ||
      (path.size() > 2 && !IsSeparator(path[2]))) {
    return std::nullopt;
  }
  WindowsPath parsed;
  parsed.drive = path[0];
  std::size_t start = 2;
  while (start < path.size()) {
    std::size_t end = start;
    while (end < path.size() && !IsSeparator(path[end])) {
      ++end;
    }
    wstring component = path.substr(start, end - start);
    if (component == u"..") {
      if (!parsed.components.empty()) {
        parsed.components.pop_back();
      }
    } else if (!component.empty() && component != u".") {
      parsed.components.push_back(std::move(component));
    }
    start = end + 1;
  }
  return parsed;
}

bool SameFileName(const wstring& a, const wstring& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](WCHAR x, WCHAR y) { return FoldCase(x) == FoldCase(y); });
}

bool FileNameLess(const wstring& a, const wstring& b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](WCHAR x, WCHAR y) { return FoldCase(x) < FoldCase(y); });
}

std::optional<fs::path> FindEntryNoCase(const fs::path& dir, const wstring& name) {
  std::error_code error;
  fs::path exact = dir / fs::path(name);
  if (fs::exists(exact, error)) {
    return exact;
  }
  for (fs::directory_iterator it(dir, error), end; !error && it != end; it.increment(error)) {
    if (SameFileName(it->path().filename().u16string(), name)) {
      return it->path();
    }
  }
  return std::nullopt;
}

std::optional<fs::path> DriveFolder(const MachineFacts& facts, WCHAR drive) {
  if (facts.driveRoot.empty()) {
    return std::nullopt;
  }
  wstring folder(1, FoldCase(drive));
  return FindEntryNoCase(facts.driveRoot, folder).value_or(facts.driveRoot / fs::path(folder));
}

std::optional<fs::path> HostPath(const MachineFacts& facts, const wstring& windowsPath) {
  auto parsed = ParseWindowsPath(windowsPath);
  if (!parsed) {
    return std::nullopt;
  }
  auto host = DriveFolder(facts, parsed->drive);
  if (!host) {
    return std::nullopt;
  }
  for (const auto& component : parsed->components) {
    host = FindEntryNoCase(*host, component).value_or(*host / fs::path(component));
  }
  return host;
}

std::optional<wstring> WidenAnsiPath(const char* path) {
  if (path == nullptr) {
    return std::nullopt;
  }
  std::string_view text(path);
  if (text.empty()) {
    return wstring();
  }
  const int length = static_cast<int>(text.size());
  int units = platform::MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
  if (units <= 0) {
    return std::nullopt;
  }
  wstring wide(static_cast<std::size_t>(units), u'\0');
  units = platform::MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), units);
  if (units <= 0) {
    return std::nullopt;
  }
  wide.resize(static_cast<std::size_t>(units));
  return wide;
}

std::optional<std::string> NarrowToAnsi(const wstring& text) {
  if (text.empty()) {
    return std::string();
  }
  const int length = static_cast<int>(text.size());
  BOOL usedDefault = FALSE;
  int bytes = platform::WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr,
                                            &usedDefault);
  if (bytes <= 0) {
    return std::nullopt;
  }
  std::string narrow(static_cast<std::size_t>(bytes), '\0');
  bytes = platform::WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow.data(), bytes,
                                        nullptr, &usedDefault);
  if (bytes <= 0 || usedDefault != FALSE) {
    return std::nullopt;
  }
  narrow.resize(static_cast<std::size_t>(bytes));
  return narrow;
}

}  // namespace Hostkit::sim
