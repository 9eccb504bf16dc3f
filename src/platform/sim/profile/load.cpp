// Loading machine profiles: the fields of the machine as a whole (release, version, language,
// code pages, computer name, environment, drives, module path, registry files) here, each other
// section by its own reader. A field found to be wrong is reported at the line of its key
// (platform/sim/profile/json_positions.h). Every message is the loader's own: nlohmann's texts
// never reach the user.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "foundation/error_line.h"
#include "foundation/reg_file.h"
#include "hostkit/sim/profile.h"
#include "platform/sim/profile/devices.h"
#include "platform/sim/profile/hardware.h"
#include "platform/sim/profile/json_positions.h"
#include "platform/sim/profile/network.h"
#include "platform/sim/profile/support.h"
#include "platform/sim/profile/windows.h"
#include "platform/sim/text/codec.h"

namespace Hostkit::sim {

namespace {

using Json = nlohmann::json;
using KeyPath = std::vector<std::string>;

// Bytes of a registry file named by the profile, and the name to report it by; false when it
// cannot be read, with `what` saying why.
using RegistrySource = std::function<bool(const std::string& entry, std::string& bytes,
                                          std::string& name, std::string& what)>;

// The deepest nesting of objects and lists a profile may have.
constexpr size_t kMaxDepth = 64;

constexpr const char* kFields[] = {
    "release",     "version",       "language", "ansiCodePage", "oemCodePage", "computerName",
    "environment", "administrator", "drives",   "modulePath",   "registry",
};

template <size_t N>
bool IsOneOf(const std::string& key, const char* const (&names)[N]) {
  return std::find(std::begin(names), std::end(names), key) != std::end(names);
}

class ProfileReader {
 public:
  ProfileReader(const std::string& text, const std::string& name) : text_(text), name_(name) {}

  std::shared_ptr<Machine> Read(const RegistrySource& registry, const std::filesystem::path& folder,
                                std::string& error);

 private:
  bool Fail(const KeyPath& keys, const std::string& what) {
    error_ = ErrorLine(name_, LineOfKey(text_, keys), what);
    return false;
  }
  bool FailType(const KeyPath& keys, const std::string& expected) {
    return Fail(keys, "\"" + keys.back() + "\" must be " + expected);
  }

  template <class T>
  bool ReadNumber(const Json& value, const KeyPath& keys, T& out) {
    const std::uint64_t max = std::numeric_limits<T>::max();
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > max) {
      return FailType(keys, "a whole number from 0 to " + std::to_string(max));
    }
    out = static_cast<T>(value.get<std::uint64_t>());
    return true;
  }
  bool ReadBool(const Json& value, const KeyPath& keys, bool& out) {
    if (!value.is_boolean()) {
      return FailType(keys, "true or false");
    }
    out = value.get<bool>();
    return true;
  }
  bool ReadUtf8(const Json& value, const KeyPath& keys, std::string& out) {
    if (!value.is_string()) {
      return FailType(keys, "a string");
    }
    out = value.get<std::string>();
    return true;
  }
  // A string field converted to the machine's ANSI code page.
  bool ReadAnsi(const Json& value, const KeyPath& keys, std::string& out) {
    std::string utf8;
    if (!ReadUtf8(value, keys, utf8)) {
      return false;
    }
    if (!Utf8ToAnsi(*machine_, utf8, out)) {
      return Fail(keys, "\"" + keys.back() + "\" has text that code page " +
                            std::to_string(machine_->facts().ansiCodePage) + " cannot hold");
    }
    return true;
  }

  bool ReadRelease(const Json& root);
  bool ReadCodePage(const Json& root, const char* key, UINT& out);
  bool ReadVersion(const Json& value);
  bool ReadEnvironment(const Json& value);
  bool ReadDrives(const Json& value, const std::filesystem::path& folder);
  bool ReadRegistry(const Json& value, const RegistrySource& registry);
  bool ReadField(const std::string& key, const Json& value, const RegistrySource& registry,
                 const std::filesystem::path& folder);

  const std::string& text_;
  std::string name_;
  std::string error_;
  std::shared_ptr<Machine> machine_;
};

bool ProfileReader::ReadRelease(const Json& root) {
  const auto it = root.find("release");
  if (it == root.end()) {
    return Fail({}, "missing field \"release\"");
  }
  std::string name;
  if (!ReadUtf8(*it, {"release"}, name)) {
    return false;
  }
  const auto release = ParseRelease(name);
  if (!release) {
    return Fail({"release"}, "unknown release \"" + name +
                                 "\" (expected win95, win98, winme, nt40, win2k or winxp)");
  }
  machine_ = std::make_shared<Machine>(*release);
  return true;
}

bool ProfileReader::ReadCodePage(const Json& root, const char* key, UINT& out) {
  const auto it = root.find(key);
  if (it == root.end()) {
    return true;
  }
  if (!ReadNumber(*it, {key}, out)) {
    return false;
  }
  if (!DecodeCodePage(out, "", false)) {
    return Fail({key}, "code page " + std::to_string(out) + " is not supported");
  }
  return true;
}

bool ProfileReader::ReadVersion(const Json& value) {
  if (!value.is_object()) {
    return FailType({"version"}, "an object");
  }
  VersionRecord& v = machine_->facts().version;
  for (const auto& [key, field] : value.items()) {
    const KeyPath keys{"version", key};
    bool ok = true;
    if (key == "major") {
      ok = ReadNumber(field, keys, v.major);
    } else if (key == "minor") {
      ok = ReadNumber(field, keys, v.minor);
    } else if (key == "build") {
      ok = ReadNumber(field, keys, v.build);
    } else if (key == "platform") {
      ok = ReadNumber(field, keys, v.platform);
    } else if (key == "csd") {
      ok = ReadAnsi(field, keys, v.csdVersion);
    } else if (key == "servicePackMajor") {
      ok = ReadNumber(field, keys, v.servicePackMajor);
    } else if (key == "servicePackMinor") {
      ok = ReadNumber(field, keys, v.servicePackMinor);
    } else if (key == "suiteMask") {
      ok = ReadNumber(field, keys, v.suiteMask);
    } else if (key == "productType") {
      ok = ReadNumber(field, keys, v.productType);
    } else if (key == "answers") {
      ok = ReadBool(field, keys, v.answers);
    } else if (key == "acceptsExtended") {
      ok = ReadBool(field, keys, v.acceptsExtended);
    } else {
      ok = Fail(keys, "unknown field \"" + key + "\" in \"version\"");
    }
    if (!ok) {
      return false;
    }
  }
  return true;
}

bool ProfileReader::ReadEnvironment(const Json& value) {
  if (!value.is_object()) {
    return FailType({"environment"}, "an object of strings");
  }
  auto& environment = machine_->facts().environment;
  environment.clear();
  for (const auto& [key, field] : value.items()) {
    std::string name;
    std::string text;
    if (!ReadAnsi(key, {"environment", key}, name) ||
        !ReadAnsi(field, {"environment", key}, text)) {
      return false;
    }
    environment[name] = text;
  }
  return true;
}

bool ProfileReader::ReadDrives(const Json& value, const std::filesystem::path& folder) {
  std::string drives;
  if (!ReadUtf8(value, {"drives"}, drives)) {
    return false;
  }
  const std::filesystem::path root = folder / std::filesystem::path(drives);
  std::error_code ignored;
  if (!std::filesystem::is_directory(root, ignored)) {
    return Fail({"drives"}, "drive folder \"" + root.string() + "\" does not exist");
  }
  machine_->facts().driveRoot = std::filesystem::weakly_canonical(root);
  return true;
}

bool ProfileReader::ReadRegistry(const Json& value, const RegistrySource& registry) {
  if (!value.is_array()) {
    return FailType({"registry"}, "a list of registry file names");
  }
  std::vector<std::string> entries;
  for (const Json& item : value) {
    if (!item.is_string()) {
      return FailType({"registry"}, "a list of registry file names");
    }
    entries.push_back(item.get<std::string>());
  }
  for (const std::string& entry : entries) {
    std::string bytes;
    std::string fileName;
    std::string what;
    if (!registry(entry, bytes, fileName, what)) {
      return Fail({"registry"}, "cannot read registry file \"" + fileName + "\": " + what);
    }
    if (!ApplyRegistryBytes(*machine_, bytes, fileName, error_)) {
      return false;
    }
  }
  return true;
}

bool ProfileReader::ReadField(const std::string& key, const Json& value,
                              const RegistrySource& registry, const std::filesystem::path& folder) {
  MachineFacts& facts = machine_->facts();
  if (key == "version") {
    return ReadVersion(value);
  }
  if (key == "language") {
    return ReadNumber(value, {key}, facts.language);
  }
  if (key == "computerName") {
    return ReadAnsi(value, {key}, facts.computerName);
  }
  if (key == "environment") {
    return ReadEnvironment(value);
  }
  if (key == "administrator") {
    return ReadBool(value, {key}, facts.administrator);
  }
  if (key == "drives") {
    return ReadDrives(value, folder);
  }
  if (key == "modulePath") {
    return ReadAnsi(value, {key}, facts.modulePath);
  }
  if (key == "registry") {
    return ReadRegistry(value, registry);
  }
  if (IsDeviceField(key)) {
    KeyPath keys;
    std::string what;
    return ReadDeviceField(key, value, *machine_, keys, what) || Fail(keys, what);
  }
  if (IsHardwareField(key)) {
    KeyPath keys;
    std::string what;
    return ReadHardwareField(key, value, *machine_, keys, what) || Fail(keys, what);
  }
  if (IsWindowField(key)) {
    KeyPath keys;
    std::string what;
    return ReadWindowField(key, value, *machine_, keys, what) || Fail(keys, what);
  }
  if (IsNetworkField(key)) {
    KeyPath keys;
    std::string what;
    return ReadNetworkField(key, value, *machine_, keys, what) || Fail(keys, what);
  }
  return true;  // release and the code pages are read first
}

std::shared_ptr<Machine> ProfileReader::Read(const RegistrySource& registry,
                                             const std::filesystem::path& folder,
                                             std::string& error) {
  if (const auto deep = TooDeep(text_, kMaxDepth)) {
    error = ErrorLine(name_, LineAt(text_, *deep),
                      "nested deeper than " + std::to_string(kMaxDepth) + " levels");
    return nullptr;
  }
  Json root;
  TreeBuilder builder(root);
  if (!Json::sax_parse(text_, &builder, Json::input_format_t::json, true, true)) {
    error = ErrorLine(name_, LineAt(text_, builder.offset()), builder.what(text_));
    return nullptr;
  }
  bool ok = root.is_object() || Fail({}, "the profile must be a JSON object");
  for (auto it = root.begin(); ok && it != root.end(); ++it) {
    if (!IsOneOf(it.key(), kFields) && !IsDeviceField(it.key()) && !IsHardwareField(it.key()) &&
        !IsWindowField(it.key()) && !IsNetworkField(it.key())) {
      ok = Fail({it.key()}, "unknown field \"" + it.key() + "\"");
    }
  }
  ok = ok && ReadRelease(root) &&
       ReadCodePage(root, "ansiCodePage", machine_->facts().ansiCodePage) &&
       ReadCodePage(root, "oemCodePage", machine_->facts().oemCodePage);
  // Registry files come last: they may need every other fact (the code page above all).
  for (auto it = root.begin(); ok && it != root.end(); ++it) {
    if (it.key() != "registry") {
      ok = ReadField(it.key(), it.value(), registry, folder);
    }
  }
  if (ok && root.contains("registry")) {
    ok = ReadField("registry", root["registry"], registry, folder);
  }
  if (!ok) {
    error = error_;
    return nullptr;
  }
  return machine_;
}

}  // namespace

std::shared_ptr<Machine> LoadMachineProfile(const std::filesystem::path& file, std::string& error) {
  try {
    std::string text;
    std::string what;
    if (!ReadWholeFile(file, kMaxProfileBytes, text, what)) {
      error = ErrorLine(file.string(), 1, what);
      return nullptr;
    }
    const std::filesystem::path folder = file.parent_path();
    const RegistrySource fromFolder = [&folder](const std::string& entry, std::string& bytes,
                                                std::string& name, std::string& what) {
      const std::filesystem::path path = folder / std::filesystem::path(entry);
      name = path.string();
      return ReadWholeFile(path, regfile::kMaxFileBytes, bytes, what);
    };
    ProfileReader reader(text, file.string());
    return reader.Read(fromFolder, folder, error);
  } catch (const std::exception&) {
    error = ErrorLine(file.string(), 1, "not enough memory to load the profile");
    return nullptr;
  }
}

std::shared_ptr<Machine> LoadMachineProfileText(
    const std::string& text, const std::string& name,
    const std::map<std::string, std::string>& registryFiles, const std::filesystem::path& folder,
    std::string& error) {
  try {
    const RegistrySource fromMap = [&registryFiles](const std::string& entry, std::string& bytes,
                                                    std::string& fileName, std::string& what) {
      fileName = entry;
      const auto it = registryFiles.find(entry);
      if (it == registryFiles.end()) {
        what = "the file does not exist";
        return false;
      }
      bytes = it->second;
      return true;
    };
    if (text.size() > kMaxProfileBytes) {
      error = ErrorLine(name, 1, FileTooLarge(kMaxProfileBytes));
      return nullptr;
    }
    ProfileReader reader(text, name);
    return reader.Read(fromMap, folder, error);
  } catch (const std::exception&) {
    error = ErrorLine(name, 1, "not enough memory to load the profile");
    return nullptr;
  }
}

}  // namespace Hostkit::sim
