// The registry file reader and applier: a file is refused without changing the registry, or
// applied; what it made is written out again, and that file read into a second machine makes
// the same registry and writes the same bytes. Inputs of even length run on Windows XP (wide
// calls), of odd length on Windows 98 (narrow calls, ANSI text).
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "foundation/reg_file.h"
#include "fuzz_machine.h"
#include "platform/sim/profile/support.h"
#include "platform/sim/registry/store.h"

namespace {

using Hostkit::sim::Machine;
using Hostkit::sim::Release;

std::vector<HKEY> Roots(const Machine& machine) {
  std::vector<HKEY> roots{HKEY_LOCAL_MACHINE, HKEY_USERS};
  if (machine.isWin9x()) {
    roots.push_back(HKEY_DYN_DATA);
  }
  return roots;
}

void CheckOneLine(const std::string& error) {
  if (error.empty() || error.find('\n') != std::string::npos ||
      error.find('\r') != std::string::npos || error.rfind("fuzz.reg:", 0) != 0) {
    hostkit_fuzz::Broken("not one line naming the file: " + error);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const Release release = size % 2 == 0 ? Release::WinXP : Release::Win98;
  auto first = hostkit_fuzz::FreshMachine(release);
  const auto empty = first->registry().snapshot();
  std::string error;
  if (!Hostkit::sim::ApplyRegistryBytes(*first, bytes, "fuzz.reg", error)) {
    CheckOneLine(error);
    if (first->registry().snapshot() != empty) {
      hostkit_fuzz::Broken("a refused file changed the registry: " + error);
    }
    return 0;
  }
  std::string written;
  if (!Hostkit::regfile::WriteRegFile(Roots(*first), written, error)) {
    hostkit_fuzz::Broken("the applied registry cannot be written: " + error);
  }
  const auto made = first->registry().snapshot();

  auto second = hostkit_fuzz::FreshMachine(release);
  if (!Hostkit::sim::ApplyRegistryBytes(*second, written, "fuzz.reg", error)) {
    hostkit_fuzz::Broken("the written file is refused: " + error);
  }
  if (second->registry().snapshot() != made) {
    hostkit_fuzz::Broken("the written file makes another registry");
  }
  std::string again;
  if (!Hostkit::regfile::WriteRegFile(Roots(*second), again, error) || again != written) {
    hostkit_fuzz::Broken("writing the same registry twice gives different files");
  }
  Hostkit::sim::ActivateMachine(nullptr);
  return 0;
}
