// The SNMP identifier conversions: text to the agent's form and back gives the components the
// text has, and an identifier is never beyond itself.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz_machine.h"
#include "live/snmp_values.h"

namespace {

void* WINAPI Allocate(UINT bytes) { return std::calloc(1, bytes == 0 ? 1 : bytes); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::vector<UINT> components = Hostkit::live::OidComponents(text);
  Hostkit::platform::snmp::AsnObjectIdentifier oid{};
  if (!Hostkit::live::ToAgentOid(text, Allocate, oid)) {
    hostkit_fuzz::Broken("an identifier could not be converted with memory to spare");
  }
  const std::vector<UINT> held(oid.ids, oid.ids + oid.idLength);
  std::string back;
  const bool hasText = Hostkit::live::OidText(oid, back);
  const bool beyond = Hostkit::live::OidBeyond(oid, components);
  std::free(oid.ids);
  if (held != components || beyond) {
    hostkit_fuzz::Broken("the agent's identifier differs from its text: " + text);
  }
  if (hasText && Hostkit::live::OidComponents(back) != components) {
    hostkit_fuzz::Broken("an identifier's text reads back otherwise: " + back);
  }
  return 0;
}
