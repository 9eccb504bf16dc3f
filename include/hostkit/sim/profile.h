/// \file
/// Machine profiles: a JSON file naming a Windows release and the machine's other facts, and
/// listing the registry files (REGEDIT4 or 5.00) that make its registry.
///
///   { "release": "winxp",
///     "version": { "major": 5, "minor": 1, "build": 2600, "platform": 2,
///                  "csd": "Service Pack 2", "servicePackMajor": 2, "servicePackMinor": 0,
///                  "suiteMask": 256, "productType": 1, "answers": true,
///                  "acceptsExtended": true },
///     "language": 1033, "ansiCodePage": 1252, "oemCodePage": 437,
///     "computerName": "HOMEPC", "environment": { "windir": "C:\\WINDOWS" },
///     "administrator": true, "drives": "files/xp", "modulePath": "C:\\SETUP\\SETUP.EXE",
///     "registry": [ "xp.reg" ] }
///
/// Only "release" is required. Version fields left out keep the release's typical record;
/// "drives" and the registry files are relative to the profile's folder and are applied in
/// order. Unknown fields and values of the wrong type are errors. Errors are one line,
/// "FILE:LINE: what is wrong", naming the profile or the registry file at fault.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "hostkit/export.h"
#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

/// A new machine made from the profile file; null on failure, with `error` set.
HOSTKIT_API std::shared_ptr<Machine> LoadMachineProfile(const std::filesystem::path& file,
                                                        std::string& error);

/// The same from profile text held in memory. `name` names the profile in errors; the entries
/// of "registry" are looked up in `registryFiles` (name to file bytes); "drives" is relative to
/// `folder`.
HOSTKIT_API std::shared_ptr<Machine> LoadMachineProfileText(
    const std::string& text, const std::string& name,
    const std::map<std::string, std::string>& registryFiles, const std::filesystem::path& folder,
    std::string& error);

/// Writes the machine's facts as the profile `file` and its registry as one registry file beside
/// it (same name, extension ".reg"; 5.00 for the NT family, REGEDIT4 for Windows 9x), so that
/// LoadMachineProfile makes an equal machine again.
HOSTKIT_API bool SaveMachineProfile(Machine& machine, const std::filesystem::path& file,
                                    std::string& error);

/// Applies one registry file to an existing machine. On any error the machine is left as it was.
HOSTKIT_API bool ImportRegFile(Machine& machine, const std::filesystem::path& file,
                               std::string& error);

}  // namespace Hostkit::sim
