// The hardware facts of a machine profile: processors, performance counter, memory, drives and
// the Windows directory.
//
//   "processor":            { "affinityMask": 3, "vendor": "GenuineIntel", "family": 6,
//                             "mhz": 733, "cpuid": true, "timeStampCounter": true }
//   "performanceFrequency": 3579545
//   "memory":               268435456
//   "volumes":              { "A": { "type": "removable" },
//                             "C": { "type": "fixed", "total": 20000000000, "free": 5000000000 } }
//   "windowsDirectory":     "C:\\WINDOWS"
//
// Drive types are "removable", "fixed", "remote", "cdrom", "ramdisk" and "no root"; sizes are
// bytes. Every member is optional and keeps its default when left out.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

bool IsHardwareField(const std::string& key);

// Reads one hardware field into the machine. On failure `keys` is the path of the member at
// fault (from the field's key down) and `what` says what is wrong.
bool ReadHardwareField(const std::string& key, const nlohmann::json& value, Machine& machine,
                       std::vector<std::string>& keys, std::string& what);

// Adds the machine's hardware facts to a profile being saved.
void WriteHardwareFields(const Machine& machine, nlohmann::ordered_json& json);

}  // namespace Hostkit::sim
