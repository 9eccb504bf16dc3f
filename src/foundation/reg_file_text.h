// Text helpers shared by the registry file reader, applier and writer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/reg_file.h"
#include "hostkit/win_types.h"

namespace Hostkit::regfile {

// Converts between the active machine's ANSI code page and UTF-16 through the seam. Every
// unit is converted, zeros included; empty text converts to empty text. False when the
// conversion fails.
bool AnsiToWide(std::string_view ansi, wstring& wide);
bool WideToAnsi(wstring_view wide, std::string& ansi);

// UTF-8 form of wide text, for messages only (unpaired surrogates become U+FFFD).
std::string Utf8ForMessage(wstring_view wide);

// The little-endian bytes of UTF-16 units, and the units of such bytes (an odd last byte is
// dropped).
std::vector<BYTE> Utf16Bytes(wstring_view text);
wstring Utf16Units(const std::vector<BYTE>& bytes);

// "ROOT\path" for messages.
std::string KeyForMessage(HKEY root, wstring_view path);

}  // namespace Hostkit::regfile
