// The command line of the hostkit tool: global options, how commands are registered, the
// validators that turn wrong input into usage errors, and the running of one command.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>

namespace hostkit_tool {

struct GlobalOptions {
  std::string machine;  // profile to load; empty: the built-in machine
  std::string save;     // profile file or folder to save the changed machine to
  bool force = false;   // --save may overwrite the loaded profile
  bool json = false;
};

// What each command runs once its arguments are parsed and the machine is loaded.
using CommandTable = std::map<CLI::App*, std::function<int()>>;

// A command of `parent` whose --help ends with a runnable example.
CLI::App* AddCommand(CLI::App& parent, const std::string& name, const std::string& description,
                     const std::string& example);

// The commands of each area, registered with their options and what they run.
void AddAdapterCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err);
void AddBrowserCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err);
void AddMailCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err);
void AddTweakCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err);
void AddWindowCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err);
void AddDialupCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err);
void AddDevicesCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err);
void AddRasCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err);
void AddSetupBroadbandCommand(CLI::App& app, CommandTable& run, std::ostream& out,
                              std::ostream& err);
// Commands on machine profiles (diff); none on Windows, where the tool asks this computer.
void AddMachineCommands(CLI::App& app, CommandTable& run, std::ostream& out, std::ostream& err);

// Validators of argument text.
CLI::Validator HardwareAddressValidator();        // six hex pairs joined by "-" or ":"
CLI::Validator AdapterNumberOrHardwareAddress();  // a number or a hardware address
CLI::Validator KeyNameValidator();                // ROOT\path with a known root
CLI::Validator HostNameValidator();               // a valid TCP/IP host name
CLI::Validator PatternValidator();                // a pattern the library can compile

// False, after a usage message, when an argument is not UTF-8 text.
bool CheckArgumentsAreUtf8(int argc, char** argv, std::ostream& err);

// Prints a parse error (with the nearest command when a command name was mistyped) or the
// help and version texts, and answers kDone for help and version, kUsage otherwise.
int ReportParseError(CLI::App& app, const CLI::ParseError& error, std::ostream& out,
                     std::ostream& err);

// Runs a command on the loaded machine. On the simulated machine its drives are a temporary
// copy; after a command that succeeded, --save writes the machine. Answers the command's exit code,
// or kFailed when saving fails.
int RunChange(const GlobalOptions& options, const std::function<int()>& command, std::ostream& err);

}  // namespace hostkit_tool
