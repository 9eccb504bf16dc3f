// hostkit backup: saves registry keys to a .reg file through the library's RegistryBackup.
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "hostkit/registry_backup.h"
#include "hostkit/regwiz.h"
#include "hostkit/strings.h"

namespace hostkit_tool {

int RunBackup(const std::vector<std::string>& keys, const std::string& file, std::ostream& out,
              std::ostream& err) {
  Hostkit::RegistryBackup backup;
  Hostkit::RegWiz registry;
  for (const std::string& key : keys) {
    KeyName name;
    if (!ParseKeyName(key, name)) {
      return UsageError("\"" + key + "\" does not start with a root key such as HKLM", err);
    }
    const Hostkit::wstring path = Wide(name.path);
    const HKEY root = name.root;
    // The library leaves out keys it cannot open; the tool says so instead.
    if (!registry.DoesKeyExist(root, path.c_str())) {
      return Fail("key not found: " + key, err);
    }
    backup.AddRegistryKey(root, path.c_str());
  }
  std::string error;
  if (!WriteHostFile(
          file, [&](const Hostkit::wstring& path) { return backup.SaveRegistry(path.c_str()); },
          error)) {
    return Fail("cannot write " + file + ": " + error, err);
  }
  out << "saved " << keys.size() << (keys.size() == 1 ? " key" : " keys") << " to " << file << "\n";
  return kDone;
}

}  // namespace hostkit_tool
