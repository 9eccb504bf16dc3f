// The machine of the Windows build is the one the tool runs on; profiles do not apply.
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
