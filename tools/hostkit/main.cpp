// hostkit: runs the library's queries on a machine and prints what they answer.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>

#include "commands.h"

namespace {

int Run(int argc, char** argv) {
  CLI::App app{"hostkit: asks the Hostkit3 library about a Windows machine"};
  std::string machine;
  app.add_option("--machine", machine,
                 "machine profile (JSON) to run on instead of the built-in Windows XP home PC");
  app.require_subcommand(1);
  CLI::App* os = app.add_subcommand("os", "release, version, language and administrator facts");
  CLI::App* reg = app.add_subcommand("reg", "registry commands");
  reg->require_subcommand(1);
  CLI::App* query = reg->add_subcommand("query", "list a key's values and subkeys");
  std::string key;
  query->add_option("KEY", key, "the key, e.g. HKLM\\SOFTWARE\\Microsoft")->required();

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? 0 : 1;
  }

  std::string error;
  if (!hostkit_tool::UseMachine(machine, error)) {
    std::cerr << "hostkit: " << error << "\n";
    return 1;
  }
  if (os->parsed()) {
    return hostkit_tool::RunOs(std::cout, std::cerr);
  }
  if (query->parsed()) {
    return hostkit_tool::RunRegQuery(key, std::cout, std::cerr);
  }
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& e) {
    std::cerr << "hostkit: " << e.what() << "\n";
  } catch (...) {
    std::cerr << "hostkit: unexpected failure\n";
  }
  return 1;
}
