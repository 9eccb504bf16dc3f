// One-line error messages.
#include "foundation/error_line.h"

#include <cstdio>

namespace Hostkit {

std::string EscapeControls(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\t') {
      out += "\\t";
    } else if (byte < 0x20 || byte == 0x7F) {
      char escape[5];
      std::snprintf(escape, sizeof escape, "\\x%02X", byte);
      out += escape;
    } else {
      out += c;
    }
  }
  return out;
}

std::string ErrorLine(std::string_view file, int line, std::string_view what) {
  std::string message(file);
  message += ':';
  message += std::to_string(line);
  message += ": ";
  message += what;
  return EscapeControls(message);
}

std::string FileTooLarge(std::size_t limit) {
  return "the file is larger than " + std::to_string(limit >> 20) + " MiB";
}

}  // namespace Hostkit
