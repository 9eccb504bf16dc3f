// Object identifiers and values of the SNMP agent, converted to and from the texts the
// CSNMPQuery cache holds.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/snmp.h"

namespace Hostkit::live {

// The components of a dotted identifier: one more than the "." characters that a further
// character follows (a trailing "." adds none, "" has none), each the decimal number read from
// its position up to the next ".".
std::vector<UINT> OidComponents(const std::string& text);

// `text` in the agent's form, the components in memory from `alloc`; false when the memory
// cannot be had. An identifier without components has no array.
bool ToAgentOid(const std::string& text, platform::snmp::MemAlloc alloc,
                platform::snmp::AsnObjectIdentifier& oid);

// The components in decimal joined by "."; empty and false for an absent identifier.
bool OidText(const platform::snmp::AsnObjectIdentifier& oid, std::string& text);

// Whether `oid` lies beyond `limit`, compared component by component over the limit's length.
bool OidBeyond(const platform::snmp::AsnObjectIdentifier& oid, const std::vector<UINT>& limit);

// The value as text by its type tag: an octet string as its characters when every byte is
// printable, else as two lower-case hexadecimal digits a byte, with a line feed appended; an IP
// address dotted ("0.0.0.0" when it has no four bytes); integers and counters in decimal. Any
// other type gives empty text and false.
bool ValueText(const platform::snmp::AsnAny& value, std::string& text);

// Searches of a walk's (identifier, value) pairs: the value of `column`.`index` (false when
// absent), and the (index, value) pairs of a column in walk order.
using CacheEntry = std::pair<std::string, std::string>;
bool FindInCache(const std::vector<CacheEntry>& cache, const std::string& column,
                 const std::string& index, std::string& value);
std::vector<CacheEntry> CacheColumn(const std::vector<CacheEntry>& cache,
                                    const std::string& column);

}  // namespace Hostkit::live
