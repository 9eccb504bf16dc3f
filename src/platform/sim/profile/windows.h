// The windows of a machine profile: top-level windows with their controls, nested.
//
//   "windows": [ { "class": "#32770", "title": "Setup", "appearsAt": 1500, "disappearsAt": 9000,
//                  "controls": [ { "class": "Button", "title": "&Next >", "id": 12324 },
//                                { "class": "Button", "title": "Fast", "id": 1002,
//                                  "visible": false } ] } ]
//
// Members: "class" and "title" (strings), "narrowTitle" (the title reads only as narrow text),
// "id" (a control's dialog identifier), "visible", "closes" (WM_CLOSE destroys the window),
// "appearsAt" and "disappearsAt" (milliseconds of the machine's virtual time) and "controls".
// Every member is optional; a window exists from the start and never goes unless told so.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

bool IsWindowField(const std::string& key);

// Reads the "windows" field into the machine. On failure `keys` is the path of the member at
// fault (from the field's key down) and `what` says what is wrong.
bool ReadWindowField(const std::string& key, const nlohmann::json& value, Machine& machine,
                     std::vector<std::string>& keys, std::string& what);

// Adds the machine's windows, when it has any, to a profile being saved.
void WriteWindowFields(Machine& machine, nlohmann::ordered_json& json);

}  // namespace Hostkit::sim
