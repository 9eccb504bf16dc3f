// COM identifiers of the simulated machine: version-4 (random) GUIDs drawn from the machine's
// seeded generator, so that a run makes the same identifiers every time.
#include "platform/com.h"

#include <cstring>

#include "hostkit/sim/machine.h"

namespace Hostkit::platform {

HRESULT CoCreateGuid(GUID* guid) {
  if (guid == nullptr) {
    return E_INVALIDARG;
  }
  auto machine = sim::ActiveMachine();
  const std::uint64_t high = machine->guidGenerator()();
  const std::uint64_t low = machine->guidGenerator()();
  guid->Data1 = static_cast<DWORD>(high >> 32);
  guid->Data2 = static_cast<WORD>(high >> 16);
  // The version (4: random) in the third field's top bits, the variant (RFC 4122) in the
  // first byte of the fourth.
  guid->Data3 = static_cast<WORD>((high & 0x0FFF) | 0x4000);
  for (int i = 0; i < 8; ++i) {
    guid->Data4[i] = static_cast<BYTE>(low >> (56 - 8 * i));
  }
  guid->Data4[0] = static_cast<BYTE>((guid->Data4[0] & 0x3F) | 0x80);
  return S_OK;
}

}  // namespace Hostkit::platform
