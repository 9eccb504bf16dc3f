// The machine of the simulated build: a profile from a file, or the embedded default machine.
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <random>

#include "commands.h"
#include "embedded_files.h"
#include "hostkit/sim/machine.h"
#include "hostkit/sim/profile.h"

namespace hostkit_tool {

namespace {

// The embedded profile: its one JSON file, with every other embedded file as a registry file
// it may name.
std::shared_ptr<Hostkit::sim::Machine> LoadDefaultMachine(std::string& error) {
  std::string profile;
  std::string profileName;
  std::map<std::string, std::string> registryFiles;
  for (std::size_t i = 0; i < kDefaultMachineFileCount; ++i) {
    const EmbeddedFile& file = kDefaultMachineFiles[i];
    std::string name = file.name;
    std::string bytes(reinterpret_cast<const char*>(file.data), file.size);
    if (name.size() > 5 && name.ends_with(".json")) {
      profile = std::move(bytes);
      profileName = "(built-in) " + name;
    } else {
      registryFiles[name] = std::move(bytes);
    }
  }
  if (profileName.empty()) {
    error = "the built-in machine has no profile";
    return nullptr;
  }
  return Hostkit::sim::LoadMachineProfileText(profile, profileName, registryFiles, {}, error);
}

}  // namespace

int FinishCommand(int status, const std::string& saveFile, std::ostream& err) {
  if (status != 0 || saveFile.empty()) {
    return status;
  }
  std::string error;
  if (!Hostkit::sim::SaveMachineProfile(*Hostkit::sim::ActiveMachine(), saveFile, error)) {
    err << "hostkit: " << error << "\n";
    return 1;
  }
  return 0;
}

bool UseMachine(const std::string& file, std::string& error) {
  auto machine =
      file.empty() ? LoadDefaultMachine(error) : Hostkit::sim::LoadMachineProfile(file, error);
  if (!machine) {
    return false;
  }
  Hostkit::sim::ActivateMachine(std::move(machine));
  return true;
}

}  // namespace hostkit_tool

namespace hostkit_tool {

bool WriteHostFile(const std::string& hostFile,
                   const std::function<bool(const Hostkit::wstring&)>& write, std::string& error) {
  namespace fs = std::filesystem;
  std::error_code failure;
  fs::path drives = fs::temp_directory_path(failure) / "hostkit-output";
  drives += std::to_string(std::random_device()());
  fs::create_directories(drives / "c", failure);
  if (failure) {
    error = failure.message();
    return false;
  }
  auto machine = Hostkit::sim::ActiveMachine();
  if (!machine) {
    error = "no machine is active";
    return false;
  }
  const fs::path previous = machine->facts().driveRoot;
  machine->facts().driveRoot = drives;
  const bool written = write(HK_WIDE("C:\\output.reg"));
  machine->facts().driveRoot = previous;
  if (!written) {
    error = "the library could not open the file";
  } else {
    fs::copy_file(drives / "c" / "output.reg", hostFile, fs::copy_options::overwrite_existing,
                  failure);
    if (failure) {
      error = failure.message();
    }
  }
  fs::remove_all(drives, failure);
  return written && error.empty();
}

bool RecordedPrograms(std::vector<std::string>& lines) {
  lines = Hostkit::sim::ActiveMachine()->startedPrograms();
  return true;
}

}  // namespace hostkit_tool
