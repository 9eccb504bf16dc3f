// The Remote Access facts of a machine profile: the dial-up devices and the phonebook entries.
//
//   "ras": { "devices": [ { "name": "Standard Modem", "type": "modem" } ],
//            "entries": { "My ISP": { "phone": "5551234", "areaCode": "", "country": 1,
//                                     "device": "Standard Modem", "deviceType": "modem",
//                                     "delayMs": 2000, "error": 0 } } }
//
// A device's "type" may be left out (it is then "modem"). An entry's members are all optional:
// "country" is 1, "deviceType" "modem", "delayMs" (how long a call takes on the machine's clock)
// 2000 and "error" (what the call ends with; 0: connected) 0 when left out.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

// Reads the "ras" field into `ras`. On failure `keys` is the path of the member at fault (from
// "ras" down) and `what` says what is wrong.
bool ReadRasField(const nlohmann::json& value, SimRas& ras, std::vector<std::string>& keys,
                  std::string& what);

// Adds the "ras" field to a profile being saved, when the machine has any device or entry.
void WriteRasField(const SimRas& ras, nlohmann::ordered_json& json);

}  // namespace Hostkit::sim
