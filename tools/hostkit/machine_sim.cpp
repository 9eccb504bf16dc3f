// The machine of the simulated build: a profile from a file, or the embedded default machine.
// Commands change a working copy of the machine's drives; --save writes the machine, its
// registry and that copy of its drives as a new profile, atomically.
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <ostream>
#include <random>

#include "command_line.h"
#include "commands.h"
#include "embedded_files.h"
#include "hostkit/sim/machine.h"
#include "hostkit/sim/profile.h"

namespace hostkit_tool {

namespace fs = std::filesystem;

namespace {

// The profile the machine was loaded from; empty for the built-in machine.
fs::path loadedProfile;

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

// A new, empty folder beside `near` (in the system's temporary folder when `near` is empty).
bool MakeTemporaryFolder(const fs::path& near, const std::string& prefix, fs::path& folder,
                         std::string& error) {
  std::error_code failure;
  const fs::path parent = near.empty() ? fs::temp_directory_path(failure) : near;
  std::random_device random;
  for (int attempt = 0; attempt < 16 && !failure; ++attempt) {
    folder = parent / (prefix + std::to_string(random()));
    if (fs::create_directory(folder, failure)) {
      return true;
    }
  }
  error = "cannot create a folder in " + parent.string() +
          (failure ? ": " + failure.message() : std::string());
  return false;
}

// Where a save goes: the profile FILE.json with FILE.reg and the folder FILE-drives beside it,
// or, for a folder, machine.json and its companions inside it.
struct SaveTarget {
  fs::path folder;
  std::string stem;
  fs::path Profile() const { return folder / (stem + ".json"); }
  fs::path Registry() const { return folder / (stem + ".reg"); }
  fs::path Drives() const { return folder / (stem + "-drives"); }
};

SaveTarget TargetOf(const std::string& save) {
  const fs::path path = fs::absolute(save);
  if (path.extension() == ".json") {
    return {path.parent_path(), path.stem().string()};
  }
  return {path, "machine"};
}

bool SameFile(const fs::path& a, const fs::path& b) {
  std::error_code failure;
  return fs::weakly_canonical(a, failure) == fs::weakly_canonical(b, failure);
}

// Refuses to overwrite the loaded profile (or its registry and drives) without --force, and
// makes sure the target folder takes files before anything is changed.
bool CheckSaveTarget(const SaveTarget& target, bool force, const fs::path& drives,
                     std::string& error) {
  if (!force && !loadedProfile.empty()) {
    fs::path loadedRegistry = loadedProfile;
    loadedRegistry.replace_extension(".reg");
    if (SameFile(target.Profile(), loadedProfile) || SameFile(target.Registry(), loadedRegistry) ||
        (!drives.empty() && SameFile(target.Drives(), drives))) {
      error = target.Profile().string() +
              ": this would overwrite the loaded profile; add --force to replace it";
      return false;
    }
  }
  std::error_code failure;
  fs::create_directories(target.folder, failure);
  fs::path probe;
  if (failure || !MakeTemporaryFolder(target.folder, ".hostkit-check-", probe, error)) {
    error =
        "cannot save into " + target.folder.string() + ": " + (failure ? failure.message() : error);
    return false;
  }
  std::ofstream test(probe / "test", std::ios::binary);
  test << "hostkit";
  test.close();
  const bool writable = !test.fail();
  fs::remove_all(probe, failure);
  if (!writable) {
    error = "cannot save into " + target.folder.string() + ": files cannot be written there";
  }
  return writable;
}

// Moves `from` onto `to`, replacing a file or folder already there.
bool Replace(const fs::path& from, const fs::path& to, std::error_code& failure) {
  if (fs::is_directory(to, failure)) {
    fs::path old = to;
    old += ".old";
    fs::remove_all(old, failure);
    fs::rename(to, old, failure);
    if (failure) {
      return false;
    }
    fs::rename(from, to, failure);
    fs::remove_all(old, failure);
    return true;
  }
  fs::rename(from, to, failure);
  return !failure;
}

// Writes the machine with the working drives into a temporary folder beside the target, then
// moves the pieces into place: a failure before the moves leaves the previous save untouched.
bool SaveMachine(Hostkit::sim::Machine& machine, const SaveTarget& target, const fs::path& drives,
                 std::string& error) {
  fs::path staging;
  if (!MakeTemporaryFolder(target.folder, ".hostkit-save-", staging, error)) {
    return false;
  }
  const SaveTarget staged{staging, target.stem};
  std::error_code failure;
  bool saved = true;
  if (!drives.empty()) {
    fs::copy(drives, staged.Drives(), fs::copy_options::recursive, failure);
    if (failure) {
      error = "cannot copy the drives to " + target.folder.string() + ": " + failure.message();
      saved = false;
    }
  }
  const fs::path working = machine.facts().driveRoot;
  if (saved) {
    if (!drives.empty()) {
      machine.facts().driveRoot = staged.Drives();
    }
    saved = Hostkit::sim::SaveMachineProfile(machine, staged.Profile(), error);
    machine.facts().driveRoot = working;
  }
  if (saved) {
    saved = (drives.empty() || Replace(staged.Drives(), target.Drives(), failure)) &&
            Replace(staged.Registry(), target.Registry(), failure) &&
            Replace(staged.Profile(), target.Profile(), failure);
    if (!saved) {
      error = "cannot move the save into " + target.folder.string() + ": " + failure.message();
    }
  }
  fs::remove_all(staging, failure);
  return saved;
}

}  // namespace

bool UseMachine(const std::string& file, std::string& error) {
  auto machine =
      file.empty() ? LoadDefaultMachine(error) : Hostkit::sim::LoadMachineProfile(file, error);
  if (!machine) {
    return false;
  }
  loadedProfile = file.empty() ? fs::path() : fs::absolute(file);
  Hostkit::sim::ActivateMachine(std::move(machine));
  return true;
}

int RunChange(const GlobalOptions& options, const std::function<int()>& command,
              std::ostream& err) {
  Hostkit::sim::Machine& machine = *Hostkit::sim::ActiveMachine();
  const fs::path source = machine.facts().driveRoot;
  std::string error;
  const SaveTarget target = options.save.empty() ? SaveTarget() : TargetOf(options.save);
  if (!options.save.empty() && !CheckSaveTarget(target, options.force, source, error)) {
    return Fail(error, err);
  }
  // The command works on a copy of the drives, so that the profile's own folder never changes.
  fs::path working;
  if (!source.empty()) {
    std::error_code failure;
    if (!MakeTemporaryFolder({}, "hostkit-drives-", working, error)) {
      return Fail(error, err);
    }
    fs::copy(source, working, fs::copy_options::recursive, failure);
    if (failure) {
      fs::remove_all(working, failure);
      return Fail("cannot copy the drives folder " + source.string() + ": " + failure.message(),
                  err);
    }
    machine.facts().driveRoot = working;
  }
  int status = command();
  if (status == kDone && !options.save.empty() && !SaveMachine(machine, target, working, error)) {
    status = Fail(error, err);
  }
  machine.facts().driveRoot = source;
  if (!working.empty()) {
    std::error_code failure;
    fs::remove_all(working, failure);
  }
  return status;
}

bool WriteHostFile(const std::string& hostFile,
                   const std::function<bool(const Hostkit::wstring&)>& write, std::string& error) {
  fs::path drives;
  if (!MakeTemporaryFolder({}, "hostkit-output-", drives, error)) {
    return false;
  }
  std::error_code failure;
  fs::create_directories(drives / "c", failure);
  auto machine = Hostkit::sim::ActiveMachine();
  const fs::path previous = machine->facts().driveRoot;
  machine->facts().driveRoot = drives;
  const bool written = !failure && write(HK_WIDE("C:\\output.reg"));
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
