// The hardware-address text parser: text it accepts formats back to the same address, and the
// formatted text parses to the same bytes.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_machine.h"
#include "live/hardware_address_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::vector<BYTE> bytes;
  if (!Hostkit::live::ParseHardwareAddress(text, bytes)) {
    return 0;
  }
  const std::string formatted = Hostkit::live::FormatHardwareAddress(bytes.data(), bytes.size());
  std::vector<BYTE> again;
  if (!Hostkit::live::SameHardwareAddress(text, formatted) ||
      !Hostkit::live::ParseHardwareAddress(formatted, again) || again != bytes) {
    hostkit_fuzz::Broken("a parsed address does not format back to itself: " + text);
  }
  return 0;
}
