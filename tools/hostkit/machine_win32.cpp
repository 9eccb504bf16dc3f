// The machine of the Windows build is the one the tool runs on; profiles do not apply.
#include <ostream>

#include "command_line.h"
#include "commands.h"
#include "hostkit/strings.h"

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
  // The arguments of a Windows program are in the ANSI code page. (std::filesystem is not used
  // for this: it would import file calls Windows 95 lacks.)
  Hostkit::wstring wide;
  if (!Hostkit::ConvertANSIToUnicode(hostFile, wide)) {
    error = "the file name is not text of this computer's code page";
    return false;
  }
  if (!write(wide)) {
    error = "the library could not open the file";
    return false;
  }
  return true;
}

// The tool acts on this computer itself: there is no machine to save, so --save is refused
// before anything changes.
int RunChange(const GlobalOptions& options, const std::function<int()>& command,
              std::ostream& err) {
  if (!options.save.empty()) {
    return Fail(
        "--save needs a simulated machine; on Windows the changes are made to this computer", err);
  }
  return command();
}

void AddMachineCommands(CLI::App& /*app*/, CommandTable& /*run*/, std::ostream& /*out*/,
                        std::ostream& /*err*/) {}

// Programs started on Windows really run; nothing records them.
bool RecordedPrograms(std::vector<std::string>& lines) {
  lines.clear();
  return false;
}

}  // namespace hostkit_tool
