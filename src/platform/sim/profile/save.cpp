// Saving a machine as a profile and one registry file beside it.
#include <fstream>
#include <nlohmann/json.hpp>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/sim/profile.h"
#include "platform/sim/profile/devices.h"
#include "platform/sim/profile/hardware.h"
#include "platform/sim/profile/network.h"
#include "platform/sim/profile/support.h"
#include "platform/sim/profile/windows.h"

namespace Hostkit::sim {

namespace {

using OrderedJson = nlohmann::ordered_json;

bool WriteWholeFile(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  return !out.fail();
}

class ProfileWriter {
 public:
  explicit ProfileWriter(Machine& machine) : machine_(machine) {}

  // The profile's fields, in the order a reader expects them; false when a text fact has no
  // UTF-8 form.
  bool Facts(OrderedJson& json, const std::filesystem::path& folder, std::string& error);

 private:
  bool Text(const std::string& ansi, const char* what, std::string& utf8, std::string& error) {
    if (!AnsiToUtf8(machine_, ansi, utf8)) {
      error = std::string(what) + " is not valid text in code page " +
              std::to_string(machine_.facts().ansiCodePage);
      return false;
    }
    return true;
  }

  Machine& machine_;
};

bool ProfileWriter::Facts(OrderedJson& json, const std::filesystem::path& folder,
                          std::string& error) {
  const MachineFacts& facts = machine_.facts();
  const VersionRecord& v = facts.version;
  std::string csd;
  std::string computerName;
  std::string modulePath;
  if (!Text(v.csdVersion, "the service pack text", csd, error) ||
      !Text(facts.computerName, "the computer name", computerName, error) ||
      !Text(facts.modulePath, "the module path", modulePath, error)) {
    return false;
  }
  json["release"] = ReleaseName(facts.release);
  json["version"] = {{"major", v.major},
                     {"minor", v.minor},
                     {"build", v.build},
                     {"platform", v.platform},
                     {"csd", csd},
                     {"servicePackMajor", v.servicePackMajor},
                     {"servicePackMinor", v.servicePackMinor},
                     {"suiteMask", v.suiteMask},
                     {"productType", v.productType},
                     {"answers", v.answers},
                     {"acceptsExtended", v.acceptsExtended}};
  json["language"] = facts.language;
  json["ansiCodePage"] = facts.ansiCodePage;
  json["oemCodePage"] = facts.oemCodePage;
  json["computerName"] = computerName;
  OrderedJson environment = OrderedJson::object();
  for (const auto& [name, value] : facts.environment) {
    std::string utf8Name;
    std::string utf8Value;
    if (!Text(name, "an environment variable name", utf8Name, error) ||
        !Text(value, "an environment variable", utf8Value, error)) {
      return false;
    }
    environment[utf8Name] = utf8Value;
  }
  json["environment"] = environment;
  json["administrator"] = facts.administrator;
  if (!facts.driveRoot.empty()) {
    std::error_code failed;
    std::filesystem::path drives = std::filesystem::relative(facts.driveRoot, folder, failed);
    if (failed || drives.empty()) {
      drives = std::filesystem::absolute(facts.driveRoot);
    }
    json["drives"] = drives.generic_string();
  }
  json["modulePath"] = modulePath;
  WriteDeviceFields(machine_, json);
  WriteHardwareFields(machine_, json);
  WriteWindowFields(machine_, json);
  WriteNetworkFields(machine_, json);
  return true;
}

}  // namespace

bool SaveMachineProfile(Machine& machine, const std::filesystem::path& file, std::string& error) {
  try {
    const std::filesystem::path folder =
        file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
    std::filesystem::path registryFile = file;
    registryFile.replace_extension(".reg");
    if (registryFile == file) {
      error = file.string() + ": a profile cannot be saved under the name of its registry file";
      return false;
    }

    OrderedJson json;
    std::string what;
    if (!ProfileWriter(machine).Facts(json, folder, what)) {
      error = file.string() + ": " + what;
      return false;
    }
    json["registry"] = OrderedJson::array({registryFile.filename().string()});

    std::vector<HKEY> roots{HKEY_LOCAL_MACHINE, HKEY_USERS};
    if (machine.isWin9x()) {
      roots.push_back(HKEY_DYN_DATA);
    }
    std::string registry;
    {
      ScopedMachine scope(Unowned(machine));
      if (!regfile::WriteRegFile(roots, registry, what)) {
        error = registryFile.string() + ": " + what;
        return false;
      }
    }
    if (!WriteWholeFile(registryFile, registry)) {
      error = registryFile.string() + ": cannot write the file";
      return false;
    }
    if (!WriteWholeFile(file, json.dump(2) + "\n")) {
      error = file.string() + ": cannot write the file";
      return false;
    }
    return true;
  } catch (const std::exception& e) {
    error = file.string() + ": " + e.what();
    return false;
  }
}

}  // namespace Hostkit::sim
