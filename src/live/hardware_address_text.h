// Hardware addresses as the live records write them: each byte as two lower-case hexadecimal
// digits, joined by "-" (00-a0-c9-12-34-56).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "hostkit/win_types.h"

namespace Hostkit::live {

std::string FormatHardwareAddress(const BYTE* bytes, std::size_t count);

// The bytes of such a text, in either case; false for anything else.
bool ParseHardwareAddress(const std::string& text, std::vector<BYTE>& bytes);

// Two hardware-address texts name the same address: equal without regard to case.
bool SameHardwareAddress(const std::string& a, const std::string& b);

// "a.b.c.d" from four bytes in memory order.
std::string FormatDottedQuad(const BYTE (&bytes)[4]);

}  // namespace Hostkit::live
