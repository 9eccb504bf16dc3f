// Reading a hardware address written as text.
#pragma once

#include <array>
#include <string_view>

namespace Hostkit::adapters {

// Reads six bytes from a text of exactly 17 characters: byte i from the characters at 3i and
// 3i+1, high digit first. The separators are not examined, and a character that is not a
// hexadecimal digit counts as 0. False, with `bytes` untouched, for a text of any other length.
bool ParseMacAddress(std::string_view text, std::array<unsigned char, 6>& bytes);

}  // namespace Hostkit::adapters
