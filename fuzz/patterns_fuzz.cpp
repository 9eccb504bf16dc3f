// Pattern matching and the validators: never an exception or a crash, and the narrow and wide
// forms agree on text that is the same in both. The input is the pattern, a zero byte and the
// text.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_machine.h"
#include "hostkit/patterns.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto machine = hostkit_fuzz::FreshMachine(Hostkit::sim::Release::WinXP);
  const std::string input(reinterpret_cast<const char*>(data), size);
  const size_t split = input.find('\0');
  const std::string pattern = input.substr(0, split);
  const std::string text = split == std::string::npos ? std::string() : input.substr(split + 1);
  const std::u16string widePattern = hostkit_fuzz::Widen(pattern);
  const std::u16string wideText = hostkit_fuzz::Widen(text);
  const bool ascii = std::all_of(input.begin(), input.end(),
                                 [](char c) { return static_cast<unsigned char>(c) < 0x80; });

  const bool narrow = Hostkit::RegExpMatch(pattern.c_str(), text.c_str());
  const bool wide = Hostkit::RegExpMatch(widePattern.c_str(), wideText.c_str());
  if (ascii && narrow != wide) {
    hostkit_fuzz::Broken("narrow and wide matches differ");
  }
  Hostkit::IsValidIPAddress(text.c_str());
  if (ascii &&
      (Hostkit::IsValidHostName(text.c_str()) != Hostkit::IsValidHostName(wideText.c_str()) ||
       Hostkit::IsValidDomainName(text.c_str()) != Hostkit::IsValidDomainName(wideText.c_str()))) {
    hostkit_fuzz::Broken("narrow and wide validators differ");
  }
  return 0;
}
