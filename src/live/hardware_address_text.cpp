// Hardware address and address text of the live records.
#include "live/hardware_address_text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <utility>

namespace Hostkit::live {

namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  if (c >= 'a' && c <= 'f') {
    return c - 'a' + 10;
  }
  if (c >= 'A' && c <= 'F') {
    return c - 'A' + 10;
  }
  return -1;
}

}  // namespace

std::string FormatHardwareAddress(const BYTE* bytes, std::size_t count) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) {
      text += '-';
    }
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0x0F];
  }
  return text;
}

bool ParseHardwareAddress(const std::string& text, std::vector<BYTE>& bytes) {
  // Pairs of digits with one "-" between them: 3n - 1 characters for n bytes.
  if (text.empty() || (text.size() + 1) % 3 != 0) {
    return false;
  }
  std::vector<BYTE> parsed;
  for (std::size_t at = 0; at < text.size(); at += 3) {
    const int high = HexDigit(text[at]);
    const int low = HexDigit(text[at + 1]);
    if (high < 0 || low < 0 || (at + 2 < text.size() && text[at + 2] != '-')) {
      return false;
    }
    parsed.push_back(static_cast<BYTE>(high << 4 | low));
  }
  bytes = std::move(parsed);
  return true;
}

std::string FormatDottedQuad(const BYTE (&bytes)[4]) {
  char text[16];
  std::snprintf(text, sizeof text, "%d.%d.%d.%d", bytes[0], bytes[1], bytes[2], bytes[3]);
  return text;
}

bool SameHardwareAddress(const std::string& a, const std::string& b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

}  // namespace Hostkit::live
