// The commands of the hostkit tool. Each prints its result on `out` and its failure on `err`
// and returns the process exit code (0 or 1).
#pragma once

#include <iosfwd>
#include <string>

namespace hostkit_tool {

// Makes the machine the commands run on: the profile `file`, or the built-in default machine
// when `file` is empty. False with `error` set when the profile cannot be loaded.
bool UseMachine(const std::string& file, std::string& error);

// `hostkit os`: the release, version, build, service pack, language and administrator facts,
// as the library's OS class reports them.
int RunOs(std::ostream& out, std::ostream& err);

// `hostkit reg query KEY`: the values (name, type, data) and subkeys of KEY, written
// "ROOT\path" with ROOT a root key's long or short name.
int RunRegQuery(const std::string& key, std::ostream& out, std::ostream& err);

}  // namespace hostkit_tool
