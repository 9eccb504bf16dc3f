// Initialisation files on the simulated machine, with the rules of Windows' profile-string
// calls: "[section]" lines open sections, "key=value" lines hold values, names match without
// regard to case, blanks around names and values do not count, and a write changes only the
// line it is about (every other line of the file, comments included, stays as it was). Lines
// are written with CR LF ends; files are read with any line end.
#include "platform/profile_strings.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "hostkit/sim/machine.h"
#include "platform/sim/shell/host_paths.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

std::string Trim(const std::string& text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool SameName(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) ==
           std::tolower(static_cast<unsigned char>(y));
  });
}

// The section a line opens, if it is a "[name]" line.
std::optional<std::string> SectionName(const std::string& line) {
  const std::string text = Trim(line);
  if (text.empty() || text.front() != '[') {
    return std::nullopt;
  }
  const auto close = text.find(']');
  return Trim(text.substr(1, close == std::string::npos ? std::string::npos : close - 1));
}

// The key of a "key=value" line.
std::optional<std::string> KeyName(const std::string& line) {
  const auto equals = line.find('=');
  if (equals == std::string::npos || SectionName(line)) {
    return std::nullopt;
  }
  return Trim(line.substr(0, equals));
}

class ProfileFile {
 public:
  explicit ProfileFile(std::filesystem::path host) : host_(std::move(host)) {
    std::ifstream in(host_, std::ios::binary);
    exists_ = static_cast<bool>(in);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    std::string line;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (bytes[i] == '\r' || bytes[i] == '\n') {
        lines_.push_back(line);
        line.clear();
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') {
          ++i;
        }
      } else {
        line += bytes[i];
      }
    }
    if (!line.empty()) {
      lines_.push_back(line);
    }
  }

  bool exists() const { return exists_; }
  std::vector<std::string>& lines() { return lines_; }

  // The line range [first, end) of the section's header and body; first == npos when absent.
  std::pair<std::size_t, std::size_t> Section(const std::string& name) const {
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      if (auto found = SectionName(lines_[i]); found && SameName(*found, name)) {
        std::size_t end = i + 1;
        while (end < lines_.size() && !SectionName(lines_[end])) {
          ++end;
        }
        return {i, end};
      }
    }
    return {std::string::npos, std::string::npos};
  }

  // The line of the key inside the section's range; npos when absent.
  std::size_t Key(std::pair<std::size_t, std::size_t> section, const std::string& key) const {
    for (std::size_t i = section.first + 1; i < section.second; ++i) {
      if (auto found = KeyName(lines_[i]); found && SameName(*found, key)) {
        return i;
      }
    }
    return std::string::npos;
  }

  bool Save() const {
    std::ofstream out(host_, std::ios::binary | std::ios::trunc);
    for (const std::string& line : lines_) {
      out << line << "\r\n";
    }
    return static_cast<bool>(out);
  }

 private:
  std::filesystem::path host_;
  bool exists_ = false;
  std::vector<std::string> lines_;
};

std::optional<std::filesystem::path> ProfileHostPath(const char* file) {
  auto wide = WidenAnsiPath(file);
  return wide ? HostPath(ActiveMachine()->facts(), *wide) : std::nullopt;
}

bool Write(ProfileFile& profile, const char* section, const char* key, const char* value) {
  auto& lines = profile.lines();
  const auto range = profile.Section(section);
  if (range.first == std::string::npos) {
    if (key == nullptr || value == nullptr) {
      return true;  // nothing to delete
    }
    lines.push_back(std::string("[") + section + "]");
    lines.push_back(std::string(key) + "=" + value);
    return profile.Save();
  }
  if (key == nullptr) {
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(range.first),
                lines.begin() + static_cast<std::ptrdiff_t>(range.second));
    return profile.Save();
  }
  const std::size_t line = profile.Key(range, key);
  if (line == std::string::npos) {
    if (value == nullptr) {
      return true;
    }
    // After the section's last non-blank line, so that a blank line before the next section
    // stays where it is.
    std::size_t at = range.second;
    while (at > range.first + 1 && Trim(lines[at - 1]).empty()) {
      --at;
    }
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), std::string(key) + "=" + value);
  } else if (value == nullptr) {
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(line));
  } else {
    lines[line] = *KeyName(lines[line]) + "=" + value;
  }
  return profile.Save();
}

// Copies one value into the caller's buffer, cut to fit.
DWORD CopyValue(const std::string& value, char* buffer, DWORD size) {
  const std::size_t copied = std::min<std::size_t>(value.size(), size - 1);
  std::memcpy(buffer, value.data(), copied);
  buffer[copied] = '\0';
  return static_cast<DWORD>(copied);
}

// Copies a list of names, each terminated, with a terminator after the last; a list that does
// not fit is cut and ends in two terminators.
DWORD CopyList(const std::vector<std::string>& names, char* buffer, DWORD size) {
  std::string list;
  for (const std::string& name : names) {
    list += name;
    list += '\0';
  }
  if (list.size() + 1 <= size) {
    std::memcpy(buffer, list.data(), list.size());
    buffer[list.size()] = '\0';
    return static_cast<DWORD>(list.size());
  }
  if (size < 2) {
    buffer[0] = '\0';
    return 0;
  }
  std::memcpy(buffer, list.data(), size - 2);
  buffer[size - 2] = '\0';
  buffer[size - 1] = '\0';
  return size - 2;
}

// A value as read: blanks around it and one pair of enclosing quotes removed.
std::string Unquote(std::string value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front()) {
    return value.substr(1, value.size() - 2);
  }
  return value;
}

DWORD Read(ProfileFile& profile, const char* section, const char* key, const char* defaultValue,
           char* buffer, DWORD size) {
  auto& lines = profile.lines();
  if (section == nullptr) {
    std::vector<std::string> names;
    for (const std::string& line : lines) {
      if (auto name = SectionName(line)) {
        names.push_back(*name);
      }
    }
    return CopyList(names, buffer, size);
  }
  const auto range = profile.Section(section);
  if (key == nullptr) {
    std::vector<std::string> names;
    for (std::size_t i = range.first + 1; range.first != std::string::npos && i < range.second;
         ++i) {
      if (auto name = KeyName(lines[i]); name && !name->empty()) {
        names.push_back(*name);
      }
    }
    return CopyList(names, buffer, size);
  }
  const std::size_t line =
      range.first == std::string::npos ? std::string::npos : profile.Key(range, key);
  if (line == std::string::npos) {
    std::string fallback = defaultValue != nullptr ? defaultValue : "";
    fallback.erase(fallback.find_last_not_of(' ') + 1);
    return CopyValue(fallback, buffer, size);
  }
  return CopyValue(Unquote(Trim(lines[line].substr(lines[line].find('=') + 1))), buffer, size);
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

BOOL WritePrivateProfileStringA(const char* section, const char* key, const char* value,
                                const char* file) {
  try {
    auto host = file != nullptr && section != nullptr ? sim::ProfileHostPath(file) : std::nullopt;
    std::error_code error;
    if (!host || !std::filesystem::is_directory(host->parent_path(), error) ||
        std::filesystem::is_directory(*host, error)) {
      SetLastError(host ? ERROR_PATH_NOT_FOUND : ERROR_INVALID_PARAMETER);
      return FALSE;
    }
    sim::ProfileFile profile(*host);
    if (!sim::Write(profile, section, key, value)) {
      SetLastError(ERROR_ACCESS_DENIED);
      return FALSE;
    }
    return TRUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

DWORD GetPrivateProfileStringA(const char* section, const char* key, const char* defaultValue,
                               char* buffer, DWORD size, const char* file) {
  if (buffer == nullptr || size == 0) {
    return 0;
  }
  try {
    auto host = file != nullptr ? sim::ProfileHostPath(file) : std::nullopt;
    std::error_code error;
    sim::ProfileFile profile(
        host && !std::filesystem::is_directory(*host, error) ? *host : std::filesystem::path());
    if (!profile.exists()) {
      SetLastError(ERROR_FILE_NOT_FOUND);
    }
    return sim::Read(profile, section, key, defaultValue, buffer, size);
  } catch (...) {
    buffer[0] = '\0';
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
  }
}

}  // namespace Hostkit::platform
