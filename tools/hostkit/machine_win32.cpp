// The machine of the Windows build is the one the tool runs on; profiles do not apply.
#include <filesystem>

#include "commands.h"

namespace hostkit_tool {

bool UseMachine(const std::string& file, std::string& error) {
  if (!file.empty()) {
    error = "--machine needs the simulated build; this build asks the running Windows";
    return false;
  }
  return true;
}

}  // namespace hostkit_tool

namespace hostkit_tool {

bool WriteHostFile(const std::string& hostFile,
                   const std::function<bool(const Hostkit::wstring&)>& write, std::string& error) {
  if (!write(std::filesystem::path(hostFile).wstring())) {
    error = "the library could not open the file";
    return false;
  }
  return true;
}

}  // namespace hostkit_tool
