// The profile loader over arbitrary text: a profile is refused with one line naming the
// profile or its registry file, or loaded; a loaded machine is saved, loaded again and saved
// again, and both saves are the same bytes.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "fuzz_machine.h"
#include "hostkit/sim/profile.h"

namespace {

namespace fs = std::filesystem;

const std::map<std::string, std::string> kRegistryFiles = {
    {"a.reg", "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Fuzz]\r\n\"v\"=\"1\"\r\n"},
};

bool IsOneLineFrom(const std::string& error, const std::string& file) {
  return error.rfind(file + ":", 0) == 0 && error.find('\n') == std::string::npos &&
         error.find('\r') == std::string::npos;
}

std::string Read(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

// Saves `machine` as m.json (and m.reg) in `folder`; the two files' bytes.
std::string Save(Hostkit::sim::Machine& machine, const fs::path& folder) {
  fs::create_directories(folder);
  std::string error;
  if (!Hostkit::sim::SaveMachineProfile(machine, folder / "m.json", error)) {
    hostkit_fuzz::Broken("a loaded machine cannot be saved: " + error);
  }
  return Read(folder / "m.json") + "\n--\n" + Read(folder / "m.reg");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const fs::path base = hostkit_fuzz::DriveFolder();
  std::string error;
  auto machine = Hostkit::sim::LoadMachineProfileText(text, "fuzz.json", kRegistryFiles,
                                                      base / "profile", error);
  if (machine == nullptr) {
    if (!IsOneLineFrom(error, "fuzz.json") && !IsOneLineFrom(error, "a.reg")) {
      hostkit_fuzz::Broken("not one line naming the file: " + error);
    }
    return 0;
  }
  const std::string saved = Save(*machine, base / "first");
  auto again = Hostkit::sim::LoadMachineProfile(base / "first" / "m.json", error);
  if (again == nullptr) {
    hostkit_fuzz::Broken("a saved profile is refused: " + error);
  }
  if (Save(*again, base / "second") != saved) {
    hostkit_fuzz::Broken("saving the loaded machine again gives other files");
  }
  return 0;
}
