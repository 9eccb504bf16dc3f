// Where a Windows path of the simulated machine lands on the host.
//
// A machine's drives are folders of the host: drive X: is the subfolder "x" of the machine's
// driveRoot. Windows file names are case-blind, host names are not, so every component of a
// Windows path is matched against what exists without regard to case (ASCII letters only;
// other characters must match exactly). "\" and "/" both separate components. Host names are
// UTF-8; the paths here are UTF-16, as the wide Win32 calls take them.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "hostkit/sim/machine.h"
#include "hostkit/win_types.h"

namespace Hostkit::sim {

// An absolute Windows path: its drive letter (as written) and its components, with "."
// dropped and ".." applied (never above the drive's root).
struct WindowsPath {
  WCHAR drive = 0;
  std::vector<wstring> components;
};

// Null unless `path` is absolute on a drive: "X:", "X:\..." or "X:/...".
std::optional<WindowsPath> ParseWindowsPath(const wstring& path);

// Whether two file names are equal without regard to ASCII case.
bool SameFileName(const wstring& a, const wstring& b);
// Case-blind order of file names (ASCII letters folded).
bool FileNameLess(const wstring& a, const wstring& b);

// The entry of the host folder `dir` named `name` without regard to case (an exact match is
// preferred); null when there is none.
std::optional<std::filesystem::path> FindEntryNoCase(const std::filesystem::path& dir,
                                                     const wstring& name);

// The host folder of the path's drive; null when the machine has no driveRoot.
std::optional<std::filesystem::path> DriveFolder(const MachineFacts& facts, WCHAR drive);

// The host path of `windowsPath`: each component matched against what exists; components that
// match nothing are kept as written (a file about to be created). Null when the machine has no
// driveRoot or the path is not absolute on a drive.
std::optional<std::filesystem::path> HostPath(const MachineFacts& facts,
                                              const wstring& windowsPath);

// A narrow path in the machine's ANSI code page as UTF-16; null when it cannot be converted.
std::optional<wstring> WidenAnsiPath(const char* path);

// UTF-16 text in the machine's ANSI code page; null when a character has no ANSI form.
std::optional<std::string> NarrowToAnsi(const wstring& text);

}  // namespace Hostkit::sim
