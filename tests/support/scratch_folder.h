// A folder for files a test has the library write, removed at the end, and the Windows paths
// by which the library reaches them: on the simulation the folder is drive C: of the active
// machine, under Wine a folder in the temporary directory.
#pragma once

#include <filesystem>
#include <string>

#include "hostkit/win_types.h"

namespace hostkit_test {

class ScratchFolder {
 public:
  // Needs the test's machine to be active already.
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  // The Windows path of the file `name` in the folder.
  Hostkit::wstring WindowsPath(const std::string& name) const;
  // The bytes of the file `name`; empty when it cannot be read.
  std::string Read(const std::string& name) const;
  // Imports the file `name` with the registry editor of the running Windows ("regedit /s").
  // False where there is none (the simulation).
  bool ImportWithRegedit(const std::string& name) const;

 private:
  // Makes the folder reachable from the running Windows.
  void Place();

  std::filesystem::path root_;   // removed at the end
  std::filesystem::path files_;  // where the named files are
};

}  // namespace hostkit_test
