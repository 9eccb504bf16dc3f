// Identifier and value conversions of the SNMP reader.
#include "live/snmp_values.h"

#include <cstdio>
#include <cstdlib>

namespace Hostkit::live {

namespace snmp = platform::snmp;

std::vector<UINT> OidComponents(const std::string& text) {
  std::vector<UINT> components;
  if (text.empty()) {
    return components;
  }
  std::size_t count = 1;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    count += text[i] == '.' ? 1 : 0;
  }
  std::size_t position = 0;
  for (std::size_t i = 0; i < count; ++i) {
    // strtoul stops at the "." (or reads 0 where no digit stands).
    components.push_back(static_cast<UINT>(std::strtoul(text.c_str() + position, nullptr, 10)));
    const std::size_t dot = text.find('.', position);
    position = dot == std::string::npos ? text.size() : dot + 1;
  }
  return components;
}

bool ToAgentOid(const std::string& text, snmp::MemAlloc alloc, snmp::AsnObjectIdentifier& oid) {
  const std::vector<UINT> components = OidComponents(text);
  oid.idLength = 0;
  oid.ids = nullptr;
  if (components.empty()) {
    return true;
  }
  oid.ids = static_cast<UINT*>(alloc(static_cast<UINT>(components.size() * sizeof(UINT))));
  if (oid.ids == nullptr) {
    return false;
  }
  for (std::size_t i = 0; i < components.size(); ++i) {
    oid.ids[i] = components[i];
  }
  oid.idLength = static_cast<UINT>(components.size());
  return true;
}

bool OidText(const snmp::AsnObjectIdentifier& oid, std::string& text) {
  text.clear();
  if (oid.idLength == 0 || oid.ids == nullptr) {
    return false;
  }
  for (UINT i = 0; i < oid.idLength; ++i) {
    if (i != 0) {
      text += '.';
    }
    text += std::to_string(oid.ids[i]);
  }
  return true;
}

bool OidBeyond(const snmp::AsnObjectIdentifier& oid, const std::vector<UINT>& limit) {
  for (std::size_t i = 0; i < limit.size() && i < oid.idLength; ++i) {
    if (oid.ids[i] != limit[i]) {
      return oid.ids[i] > limit[i];
    }
  }
  return false;
}

bool ValueText(const snmp::AsnAny& value, std::string& text) {
  text.clear();
  switch (value.asnType) {
    case snmp::kOctetString: {
      const snmp::AsnOctetString& string = value.asnValue.string;
      const BYTE* bytes = string.stream;
      const UINT length = bytes != nullptr ? string.length : 0;
      bool printable = true;
      for (UINT i = 0; i < length; ++i) {
        printable = printable && bytes[i] >= 32 && bytes[i] <= 127;
      }
      for (UINT i = 0; i < length; ++i) {
        if (printable) {
          text += static_cast<char>(bytes[i]);
        } else {
          char pair[8];
          std::snprintf(pair, sizeof pair, "%2x", static_cast<unsigned>(bytes[i]));
          text += pair[0] == ' ' ? '0' : pair[0];
          text += pair[1];
        }
      }
      text += '\n';
      return true;
    }
    case snmp::kIpAddress: {
      // The four bytes in memory order, as inet_ntoa formats them.
      const snmp::AsnOctetString& address = value.asnValue.address;
      if (address.stream == nullptr || address.length < 4) {
        text = "0.0.0.0";
        return true;
      }
      char dotted[20];
      std::snprintf(dotted, sizeof dotted, "%u.%u.%u.%u", address.stream[0], address.stream[1],
                    address.stream[2], address.stream[3]);
      text = dotted;
      return true;
    }
    case snmp::kInteger:
    case snmp::kCounter: {
      char number[24];
      std::snprintf(number, sizeof number, "%ld", static_cast<long>(value.asnValue.number));
      text = number;
      return true;
    }
    default:
      return false;
  }
}

bool FindInCache(const std::vector<CacheEntry>& cache, const std::string& column,
                 const std::string& index, std::string& value) {
  const std::string name = column + "." + index;
  for (const auto& [oid, text] : cache) {
    if (oid == name) {
      value = text;
      return true;
    }
  }
  return false;
}

std::vector<CacheEntry> CacheColumn(const std::vector<CacheEntry>& cache,
                                    const std::string& column) {
  const std::string prefix = column + ".";
  std::vector<CacheEntry> entries;
  for (const auto& [oid, text] : cache) {
    if (oid.size() > prefix.size() && oid.compare(0, prefix.size(), prefix) == 0) {
      entries.emplace_back(oid.substr(prefix.size()), text);
    }
  }
  return entries;
}

}  // namespace Hostkit::live
