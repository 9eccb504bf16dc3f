// The process-wide adapter classification lists, their built-in contents and the questions
// answered with them.
#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/mac_address.h"
#include "hostkit/adapter_classification.h"
#include "hostkit/patterns.h"
#include "hostkit/strings.h"
#include "platform/once.h"

namespace Hostkit {

namespace adapters {

namespace {

unsigned char HexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return static_cast<unsigned char>(c - '0');
  }
  if (c >= 'a' && c <= 'f') {
    return static_cast<unsigned char>(c - 'a' + 10);
  }
  if (c >= 'A' && c <= 'F') {
    return static_cast<unsigned char>(c - 'A' + 10);
  }
  return 0;
}

}  // namespace

bool ParseMacAddress(std::string_view text, std::array<unsigned char, 6>& bytes) {
  constexpr std::size_t kTextLength = 17;
  if (text.size() != kTextLength) {
    return false;
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<unsigned char>(HexDigit(text[3 * i]) << 4U | HexDigit(text[3 * i + 1]));
  }
  return true;
}

}  // namespace adapters

namespace {

// Description patterns that name a network card. "ethenet" is a misspelling seen in the
// descriptions of real drivers and is meant as written.
constexpr const char* kBuiltInDescriptions[] = {
    ".*ether.*",
    ".*lan adapter.*",
    ".*ndis.*",
    ".*linksys.*",
    ".*10/100.*",
    ".*tamarack.*pc card.*",
    ".*ne[ ]*[1-9]000.*",
    ".*netflex.*controller.*",
    ".*netflex.*driver.*",
    ".*novel[l]?[ ]*[1-9]000.*",
    ".*intel.* pro.* adapter.*",
    ".*bus [ ]*master [ ]*adapter.*",
    ".*smc [ ]*ez [ ]*card.*",
    ".*netline[ ]* pci[ ]* card.*",
    ".*conexant systems.*",
    ".*ethenet.*",
    ".*efficient networks speedstream.*",
    ".*wireless.*lan.*card.*",
    ".*cable modem.*",
    ".*catc usb.*",
    ".*ez connect usb.*",
    ".*pci adapter.*",
    ".*3c508.*",
    ".*isa adapter.*",
    ".*usb.*",
    ".*alcatel speedtouch.*",
    "efficient networks.*virtual miniport",
    "intel.* pro/100",
};

// Driver names of network cards; anchored, so the name must begin with the text.
constexpr const char* kBuiltInDrivers[] = {
    "^ether.*", "^el90x.*", "^ea20.*", "^ea10.*", "^dfe.*", "^cben4.*", "^alcan.*",
};

// Address blocks of software and dial-up adapters. The first covers every address beginning
// 44-45-53-54 ("DEST"); each other one block of 256 addresses.
const MacAddressRange kBuiltInSoftwareAdapters[] = {
    {"44-45-53-54-00-00", "FF-FF-FF-FF-00-00"}, {"00-C0-45-00-00-00", "FF-FF-FF-FF-FF-00"},
    {"00-03-8A-00-00-00", "FF-FF-FF-FF-FF-00"}, {"00-53-45-00-00-00", "FF-FF-FF-FF-FF-00"},
    {"00-41-BE-F7-5E-F6", "FF-FF-FF-FF-FF-00"}, {"00-00-00-00-00-00", "FF-FF-FF-FF-FF-00"},
    {"00-50-77-01-8B-58", "FF-FF-FF-FF-FF-00"}, {"00-20-EA-09-EB-DF", "FF-FF-FF-FF-FF-00"},
};

void FillIfEmpty(std::vector<wstring>& list) {
  if (list.empty()) {
    for (const char* pattern : kBuiltInDescriptions) {
      list.emplace_back(pattern, pattern + std::strlen(pattern));
    }
  }
}

void FillIfEmpty(std::vector<std::string>& list) {
  if (list.empty()) {
    list.assign(std::begin(kBuiltInDrivers), std::end(kBuiltInDrivers));
  }
}

void FillIfEmpty(std::vector<MacAddressRange>& list) {
  if (list.empty()) {
    list.assign(std::begin(kBuiltInSoftwareAdapters), std::end(kBuiltInSoftwareAdapters));
  }
}

// A list with built-in contents. Queries from several threads may be the first to find it
// empty, so the built-ins are loaded by one-time initialisation: exactly once after the list
// was last set. The setters, which callers never run beside queries, re-arm it.
template <class Entry>
struct ListWithBuiltIns {
  std::vector<Entry> entries;
  platform::INIT_ONCE_RECORD filled{};

  static BOOL Fill(void* parameter) {
    try {
      FillIfEmpty(*static_cast<std::vector<Entry>*>(parameter));
      return TRUE;
    } catch (...) {
      return FALSE;  // out of memory: the next query tries again
    }
  }

  // The entries, with the built-ins loaded when the list was empty.
  const std::vector<Entry>& Filled() {
    platform::ExecuteOnce(&filled, &Fill, &entries);
    return entries;
  }

  // Append keeps the list, built-in contents first when it was empty; otherwise the given
  // entries replace it.
  void Set(const std::vector<Entry>& given, bool append) {
    try {
      if (append) {
        Filled();
        entries.insert(entries.end(), given.begin(), given.end());
      } else {
        entries = given;
      }
    } catch (...) {
      // Out of memory: the list keeps what it had.
    }
    filled = {};
  }
};

// The lists live as long as the library and start empty.
ListWithBuiltIns<wstring> descriptionAcceptList;
std::vector<wstring> descriptionDeclineList;
ListWithBuiltIns<std::string> deviceDriverAcceptList;
ListWithBuiltIns<MacAddressRange> softwareAdapterList;

// Built-in patterns are lower case, so texts are lower-cased before matching: A to Z only,
// as the default locale maps them.
template <class Ch>
std::basic_string<Ch> Lowered(const Ch* text) {
  std::basic_string<Ch> lowered(text);
  for (Ch& c : lowered) {
    if (c >= Ch('A') && c <= Ch('Z')) {
      c = static_cast<Ch>(c - Ch('A') + Ch('a'));
    }
  }
  return lowered;
}

template <class Ch>
bool AnyMatches(const std::vector<std::basic_string<Ch>>& patterns,
                const std::basic_string<Ch>& text) {
  for (const auto& pattern : patterns) {
    if (RegExpMatch(pattern.c_str(), text.c_str())) {
      return true;
    }
  }
  return false;
}

// Calls `answer` with the description as wide text; false when it has no wide form.
template <class Answer>
bool WithWide(const char* description, Answer answer) {
  if (description == nullptr) {
    return false;
  }
  wstring wide;
  return ConvertANSIToUnicode(description, wide) && answer(wide.c_str());
}

bool IsPhysicalAddress(const char* address) {
  std::array<unsigned char, 6> bytes{};
  if (address == nullptr || !adapters::ParseMacAddress(address, bytes)) {
    return false;
  }
  for (const MacAddressRange& range : softwareAdapterList.Filled()) {
    std::array<unsigned char, 6> rangeBytes{};
    std::array<unsigned char, 6> mask{};
    // A range that cannot be read ends the search: the address counts as physical.
    if (!adapters::ParseMacAddress(range.address, rangeBytes) ||
        !adapters::ParseMacAddress(range.mask, mask)) {
      return true;
    }
    bool inRange = true;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      inRange = inRange && (bytes[i] & mask[i]) == (rangeBytes[i] & mask[i]);
    }
    if (inRange) {
      return false;
    }
  }
  return true;
}

}  // namespace

void SetNicDescriptionAcceptList(const std::vector<wstring>& patterns, bool append) {
  descriptionAcceptList.Set(patterns, append);
}

void SetNicDeviceDriverAcceptList(const std::vector<std::string>& patterns, bool append) {
  deviceDriverAcceptList.Set(patterns, append);
}

void SetSoftwareAdapterList(const std::vector<MacAddressRange>& ranges, bool append) {
  softwareAdapterList.Set(ranges, append);
}

// Never appends: with either flag the given patterns become the whole list.
void SetNicDescriptionDeclineList(const std::vector<wstring>& patterns, bool /*flag*/) {
  try {
    descriptionDeclineList = patterns;
  } catch (...) {
    // Out of memory: the list keeps what it had.
  }
}

bool IsNicDescription(const WCHAR* description) {
  if (description == nullptr) {
    return false;
  }
  try {
    const wstring text = Lowered(description);
    return AnyMatches(descriptionAcceptList.Filled(), text) &&
           !AnyMatches(descriptionDeclineList, text);
  } catch (...) {
    return false;
  }
}

bool IsNicDescription(const char* description) {
  try {
    return WithWide(description, [](const WCHAR* wide) { return IsNicDescription(wide); });
  } catch (...) {
    return false;
  }
}

bool IsNicDenialDescription(const WCHAR* description) {
  if (description == nullptr) {
    return false;
  }
  try {
    return AnyMatches(descriptionDeclineList, Lowered(description));
  } catch (...) {
    return false;
  }
}

bool IsNicDenialDescription(const char* description) {
  try {
    return WithWide(description, [](const WCHAR* wide) { return IsNicDenialDescription(wide); });
  } catch (...) {
    return false;
  }
}

bool IsNicDeviceDriver(const char* driver) {
  if (driver == nullptr) {
    return false;
  }
  try {
    const std::string text = Lowered(driver);
    return AnyMatches(deviceDriverAcceptList.Filled(), text);
  } catch (...) {
    return false;
  }
}

bool DoesMacAddressBelongToPhysicalAdapter(const char* address) {
  try {
    return IsPhysicalAddress(address);
  } catch (...) {
    return false;
  }
}

// A USB cable modem may carry an address from a software range and still be the adapter the
// caller is looking for.
bool DoesMacOrDescBelongToPhysicalAdapter(const char* address, const char* description) {
  try {
    if (IsPhysicalAddress(address)) {
      return true;
    }
    return description != nullptr && RegExpMatch("usb cable modem", Lowered(description).c_str());
  } catch (...) {
    return false;
  }
}

}  // namespace Hostkit
