// The text pieces every registry file writer shares.
#include "foundation/reg_file_format.h"

#include <cstdio>

namespace Hostkit::regfile {

namespace {

// A byte list continues on a new line once a line has reached this column.
constexpr size_t kWrapColumn = 78;

// Appends the byte as two lower-case hexadecimal digits.
void AppendHex2(std::string& text, unsigned value) {
  static const char kDigits[] = "0123456789abcdef";
  text.push_back(kDigits[(value >> 4) & 0xF]);
  text.push_back(kDigits[value & 0xF]);
}

}  // namespace

std::string_view FileHeader(bool version5) {
  return version5 ? "Windows Registry Editor Version 5.00\r\n\r\n" : "REGEDIT4\r\n\r\n";
}

std::string DwordText(BYTE first, BYTE second, BYTE third, BYTE fourth) {
  std::string text = "dword:";
  for (const BYTE byte : {first, second, third, fourth}) {
    AppendHex2(text, byte);
  }
  return text;
}

std::string HexValueText(DWORD type, const BYTE* data, size_t size, size_t column) {
  std::string text;
  if (type == REG_BINARY) {
    text = "hex:";
  } else {
    char prefix[24];
    std::snprintf(prefix, sizeof prefix, "hex(%lx):", static_cast<unsigned long>(type));
    text = prefix;
  }
  text.reserve(text.size() + size * 3 + size / 8 * 5);
  column += text.size() + 1;
  for (size_t i = 0; i < size; ++i) {
    if (i > 0) {
      text += ',';
      if (column >= kWrapColumn) {
        text += "\\\r\n  ";
        column = 3;
      }
    }
    AppendHex2(text, data[i]);
    column += 3;
  }
  return text;
}

void AppendUtf16Le(std::string& bytes, std::basic_string_view<WCHAR> units) {
  for (const WCHAR unit : units) {
    bytes.push_back(static_cast<char>(static_cast<unsigned>(unit) & 0xFF));
    bytes.push_back(static_cast<char>((static_cast<unsigned>(unit) >> 8) & 0xFF));
  }
}

}  // namespace Hostkit::regfile
