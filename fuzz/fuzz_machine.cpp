// The fuzz targets' machine and their check.
#include "fuzz_machine.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace hostkit_fuzz {

const std::filesystem::path& DriveFolder() {
  static const std::filesystem::path folder = [] {
    auto path = std::filesystem::temp_directory_path() /
                ("hostkit-fuzz-" + std::to_string(static_cast<long>(getpid())));
    std::filesystem::create_directories(path);
    return path;
  }();
  return folder;
}

std::shared_ptr<Hostkit::sim::Machine> FreshMachine(Hostkit::sim::Release release) {
  std::error_code ignored;
  std::filesystem::remove_all(DriveFolder() / "c", ignored);
  std::filesystem::create_directories(DriveFolder() / "c");
  auto machine = std::make_shared<Hostkit::sim::Machine>(release);
  machine->facts().driveRoot = DriveFolder();
  Hostkit::sim::ActivateMachine(machine);
  return machine;
}

void Broken(const std::string& what) {
  std::fprintf(stderr, "hostkit fuzz: %s\n", what.c_str());
  std::abort();
}

std::u16string Widen(std::string_view text) {
  std::u16string wide;
  for (const char c : text) {
    wide += static_cast<char16_t>(static_cast<unsigned char>(c));
  }
  return wide;
}

}  // namespace hostkit_fuzz
