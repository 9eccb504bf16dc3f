// ScratchFolder on the simulation: the folder holds the active machine's drive C:.
#include "hostkit/sim/machine.h"
#include "support/scratch_folder.h"

namespace hostkit_test {

void ScratchFolder::Place() {
  files_ = root_ / "c";
  std::filesystem::create_directory(files_);
  Hostkit::sim::ActiveMachine()->facts().driveRoot = root_;
}

Hostkit::wstring ScratchFolder::WindowsPath(const std::string& name) const {
  Hostkit::wstring path = HK_WIDE("C:\\");
  path.append(name.begin(), name.end());
  return path;
}

bool ScratchFolder::ImportWithRegedit(const std::string& /*name*/) const { return false; }

}  // namespace hostkit_test
