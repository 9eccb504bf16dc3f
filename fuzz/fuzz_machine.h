// What the fuzz targets share: a fresh simulated machine for each input, and the check that
// stops a run when the library breaks one of its promises.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "hostkit/sim/machine.h"

namespace hostkit_fuzz {

// Activates and returns an empty machine of `release`, whose drives are a folder of the host
// that the process keeps for the whole run (emptied for each machine).
std::shared_ptr<Hostkit::sim::Machine> FreshMachine(Hostkit::sim::Release release);

// The host folder standing for the machines' drives.
const std::filesystem::path& DriveFolder();

// Reports `what` with the input that led to it and ends the run, so that libFuzzer keeps the
// input as a finding.
[[noreturn]] void Broken(const std::string& what);

// `text` as UTF-16 code units, one unit per byte (Latin-1).
std::u16string Widen(std::string_view text);

}  // namespace hostkit_fuzz
