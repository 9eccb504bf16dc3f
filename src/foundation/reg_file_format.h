// The text pieces every registry file writer shares: the headers, quoted text with its escapes,
// the dword form, hex(N) byte lists with their line wrapping, and UTF-16 LE output. Each writer
// decides which form a value takes; these pieces only spell it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "hostkit/win_types.h"

namespace Hostkit::regfile {

// The first line of a file and the empty line after it: version 5.00 (UTF-16) or REGEDIT4.
std::string_view FileHeader(bool version5);

// The byte order mark a version 5.00 file starts with.
inline constexpr std::string_view kUtf16Bom = "\xFF\xFE";

// `text` with "\" and the double quote escaped, and CR and LF as "\r" and "\n" when
// `lineBreaks` is set.
template <class Ch>
std::basic_string<Ch> EscapedText(std::basic_string_view<Ch> text, bool lineBreaks) {
  std::basic_string<Ch> escaped;
  for (const Ch c : text) {
    if (c == static_cast<Ch>('\\') || c == static_cast<Ch>('"')) {
      escaped.push_back(static_cast<Ch>('\\'));
      escaped.push_back(c);
    } else if (lineBreaks && c == static_cast<Ch>('\r')) {
      escaped.push_back(static_cast<Ch>('\\'));
      escaped.push_back(static_cast<Ch>('r'));
    } else if (lineBreaks && c == static_cast<Ch>('\n')) {
      escaped.push_back(static_cast<Ch>('\\'));
      escaped.push_back(static_cast<Ch>('n'));
    } else {
      escaped.push_back(c);
    }
  }
  return escaped;
}

// "dword:" and the four bytes as lower-case hexadecimal, in the order given.
std::string DwordText(BYTE first, BYTE second, BYTE third, BYTE fourth);

// "hex:" for REG_BINARY, else "hex(N):" with the type in lower-case hexadecimal, then the bytes
// as comma-separated pairs. Once a line has reached column 78 the list goes on after ",\" and a
// line break, indented by two spaces; `column` is the number of characters already on the line.
std::string HexValueText(DWORD type, const BYTE* data, size_t size, size_t column);

// Appends the UTF-16 units to `bytes`, each as two bytes, low byte first.
void AppendUtf16Le(std::string& bytes, std::basic_string_view<WCHAR> units);

}  // namespace Hostkit::regfile
