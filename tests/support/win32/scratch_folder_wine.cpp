// ScratchFolder under Wine: a folder of the temporary directory, imported by Wine's regedit.
#include <process.h>
#include <windows.h>

#include "support/scratch_folder.h"

namespace hostkit_test {

void ScratchFolder::Place() {}

Hostkit::wstring ScratchFolder::WindowsPath(const std::string& name) const {
  return (files_ / name).wstring();
}

bool ScratchFolder::ImportWithRegedit(const std::string& name) const {
  char windows[MAX_PATH];
  const UINT length = GetWindowsDirectoryA(windows, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) {
    return false;
  }
  const std::string regedit = std::string(windows) + "\\regedit.exe";
  // The arguments are joined into one command line, so the path is quoted.
  const std::string path = "\"" + (files_ / name).string() + "\"";
  return _spawnl(_P_WAIT, regedit.c_str(), "regedit.exe", "/s", path.c_str(), nullptr) == 0;
}

}  // namespace hostkit_test
