// Reading and writing the hardware facts of machine profiles.
#include "platform/sim/profile/hardware.h"

#include <cctype>
#include <cstdint>
#include <limits>

#include "platform/sim/profile/support.h"

namespace Hostkit::sim {

namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;
using Keys = std::vector<std::string>;

constexpr const char* kDriveTypes[] = {"unknown", "no root", "removable", "fixed",
                                       "remote",  "cdrom",   "ramdisk"};

// Reports failures of one field: the member at fault and what is wrong with it.
class FieldReader {
 public:
  FieldReader(Machine& machine, Keys& keys, std::string& what)
      : machine_(machine), keys_(keys), what_(what) {}

  bool Fail(Keys at, const std::string& what) {
    keys_ = std::move(at);
    what_ = what;
    return false;
  }

  template <class T>
  bool Number(const Json& value, const Keys& at, T& out) {
    const std::uint64_t max = std::numeric_limits<T>::max();
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > max) {
      return Fail(at,
                  "\"" + at.back() + "\" must be a whole number from 0 to " + std::to_string(max));
    }
    out = static_cast<T>(value.get<std::uint64_t>());
    return true;
  }

  bool Bool(const Json& value, const Keys& at, bool& out) {
    if (!value.is_boolean()) {
      return Fail(at, "\"" + at.back() + "\" must be true or false");
    }
    out = value.get<bool>();
    return true;
  }

  bool Ansi(const Json& value, const Keys& at, std::string& out) {
    if (!value.is_string()) {
      return Fail(at, "\"" + at.back() + "\" must be a string");
    }
    if (!Utf8ToAnsi(machine_, value.get<std::string>(), out)) {
      return Fail(at, "\"" + at.back() + "\" has text the machine's code page cannot hold");
    }
    return true;
  }

  bool Object(const Json& value, const Keys& at) {
    return value.is_object() || Fail(at, "\"" + at.back() + "\" must be an object");
  }

  bool Processor(const Json& value);
  bool Volumes(const Json& value);

 private:
  bool Volume(const Json& value, const Keys& at, SimVolume& volume);

  Machine& machine_;
  Keys& keys_;
  std::string& what_;
};

bool FieldReader::Processor(const Json& value) {
  if (!Object(value, {"processor"})) {
    return false;
  }
  ProcessorFacts& cpu = machine_.facts().processor;
  for (const auto& [key, field] : value.items()) {
    const Keys at{"processor", key};
    bool ok = false;
    if (key == "affinityMask") {
      ok = Number(field, at, cpu.affinityMask);
    } else if (key == "vendor") {
      ok = Ansi(field, at, cpu.vendor);
    } else if (key == "family") {
      ok = Number(field, at, cpu.family);
    } else if (key == "mhz") {
      ok = Number(field, at, cpu.mhz);
    } else if (key == "cpuid") {
      ok = Bool(field, at, cpu.hasCpuid);
    } else if (key == "timeStampCounter") {
      ok = Bool(field, at, cpu.hasTimeStampCounter);
    } else if (key == "timeStampCounterFaults") {
      ok = Bool(field, at, cpu.timeStampCounterFaults);
    } else {
      ok = Fail(at, "unknown field \"" + key + "\" in \"processor\"");
    }
    if (!ok) {
      return false;
    }
  }
  return true;
}

bool FieldReader::Volume(const Json& value, const Keys& at, SimVolume& volume) {
  if (!Object(value, at)) {
    return false;
  }
  for (const auto& [key, field] : value.items()) {
    Keys member = at;
    member.push_back(key);
    bool ok = false;
    if (key == "type") {
      ok = false;
      for (UINT type = 0; type < std::size(kDriveTypes); ++type) {
        if (field.is_string() && field.get<std::string>() == kDriveTypes[type]) {
          volume.type = type;
          ok = true;
        }
      }
      if (!ok) {
        ok = Fail(member, "\"type\" must be removable, fixed, remote, cdrom, ramdisk or no root");
      }
    } else if (key == "total") {
      ok = Number(field, member, volume.totalBytes);
    } else if (key == "free") {
      ok = Number(field, member, volume.freeBytes);
    } else {
      ok = Fail(member, "unknown field \"" + key + "\" in a volume");
    }
    if (!ok) {
      return false;
    }
  }
  return true;
}

bool FieldReader::Volumes(const Json& value) {
  if (!Object(value, {"volumes"})) {
    return false;
  }
  auto& volumes = machine_.facts().volumes;
  volumes.clear();
  for (const auto& [key, field] : value.items()) {
    const Keys at{"volumes", key};
    if (key.size() != 1 || std::isalpha(static_cast<unsigned char>(key[0])) == 0) {
      return Fail(at, "\"" + key + "\" is not a drive letter");
    }
    SimVolume volume;
    if (!Volume(field, at, volume)) {
      return false;
    }
    volumes[static_cast<char>(std::toupper(static_cast<unsigned char>(key[0])))] = volume;
  }
  return true;
}

}  // namespace

bool IsHardwareField(const std::string& key) {
  return key == "processor" || key == "performanceFrequency" || key == "memory" ||
         key == "volumes" || key == "windowsDirectory";
}

bool ReadHardwareField(const std::string& key, const Json& value, Machine& machine, Keys& keys,
                       std::string& what) {
  FieldReader reader(machine, keys, what);
  MachineFacts& facts = machine.facts();
  if (key == "processor") {
    return reader.Processor(value);
  }
  if (key == "performanceFrequency") {
    return reader.Number(value, {key}, facts.performanceFrequency);
  }
  if (key == "memory") {
    return reader.Number(value, {key}, facts.totalPhysicalMemory);
  }
  if (key == "volumes") {
    return reader.Volumes(value);
  }
  return reader.Ansi(value, {key}, facts.windowsDirectory);
}

void WriteHardwareFields(const Machine& machine, OrderedJson& json) {
  const MachineFacts& facts = machine.facts();
  const ProcessorFacts& cpu = facts.processor;
  std::string vendor;
  std::string windowsDirectory;
  // Texts that have no UTF-8 form cannot be saved; they keep their defaults when loaded again.
  const bool vendorOk = AnsiToUtf8(machine, cpu.vendor, vendor);
  json["processor"] = {{"affinityMask", cpu.affinityMask},
                       {"family", cpu.family},
                       {"mhz", cpu.mhz},
                       {"cpuid", cpu.hasCpuid},
                       {"timeStampCounter", cpu.hasTimeStampCounter}};
  if (vendorOk) {
    json["processor"]["vendor"] = vendor;
  }
  if (cpu.timeStampCounterFaults) {
    json["processor"]["timeStampCounterFaults"] = true;
  }
  json["performanceFrequency"] = facts.performanceFrequency;
  json["memory"] = facts.totalPhysicalMemory;
  OrderedJson volumes = OrderedJson::object();
  for (const auto& [letter, volume] : facts.volumes) {
    const char* type = volume.type < std::size(kDriveTypes) ? kDriveTypes[volume.type] : "unknown";
    volumes[std::string(1, letter)] = {
        {"type", type}, {"total", volume.totalBytes}, {"free", volume.freeBytes}};
  }
  json["volumes"] = volumes;
  if (AnsiToUtf8(machine, facts.windowsDirectory, windowsDirectory)) {
    json["windowsDirectory"] = windowsDirectory;
  }
}

}  // namespace Hostkit::sim
