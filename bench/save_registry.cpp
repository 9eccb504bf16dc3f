// Times RegistryBackup::SaveRegistry under the running Windows, for comparing it with the
// registry editor's export of the same key: save_registry KEY FILE
// KEY is ROOT\path with a long or short root name (HKEY_CURRENT_USER or HKCU, ...). Prints the
// milliseconds SaveRegistry took, measured around the call alone.
#include <chrono>
#include <cstdio>
#include <string>

#include "hostkit/registry_backup.h"
#include "hostkit/strings.h"

namespace {

HKEY RootNamed(const std::string& name) {
  struct Root {
    const char* longName;
    const char* shortName;
    HKEY root;
  };
  const Root roots[] = {
      {"HKEY_CLASSES_ROOT", "HKCR", HKEY_CLASSES_ROOT},
      {"HKEY_CURRENT_USER", "HKCU", HKEY_CURRENT_USER},
      {"HKEY_LOCAL_MACHINE", "HKLM", HKEY_LOCAL_MACHINE},
      {"HKEY_USERS", "HKU", HKEY_USERS},
      {"HKEY_CURRENT_CONFIG", "HKCC", HKEY_CURRENT_CONFIG},
  };
  for (const Root& root : roots) {
    if (name == root.longName || name == root.shortName) {
      return root.root;
    }
  }
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: save_registry KEY FILE\n");
    return 2;
  }
  const std::string key = argv[1];
  const std::size_t slash = key.find('\\');
  const HKEY root = RootNamed(key.substr(0, slash));
  Hostkit::wstring path;
  Hostkit::wstring file;
  if (root == nullptr ||
      !Hostkit::ConvertANSIToUnicode(slash == std::string::npos ? "" : key.substr(slash + 1),
                                     path) ||
      !Hostkit::ConvertANSIToUnicode(argv[2], file)) {
    std::fprintf(stderr, "save_registry: cannot read the key or file name\n");
    return 2;
  }

  Hostkit::RegistryBackup backup;
  backup.AddRegistryKey(root, path.c_str());
  const auto start = std::chrono::steady_clock::now();
  const bool saved = backup.SaveRegistry(file.c_str());
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - start;
  if (!saved) {
    std::fprintf(stderr, "save_registry: cannot write %s\n", argv[2]);
    return 1;
  }
  std::printf("%.1f\n", elapsed.count());
  return 0;
}
