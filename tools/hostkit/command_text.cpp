// Text helpers the commands share: UTF-8 for the terminal and the machine's text, the verdict
// lines, and reports printed as text or JSON.
#include <algorithm>
#include <cctype>
#include <ostream>
#include <string>

#include "commands.h"
#include "foundation/reg_file_text.h"
#include "hostkit/strings.h"

namespace hostkit_tool {

namespace {

bool jsonOutput = false;

// Appends the UTF-16 units of the UTF-8 text; false at the first malformed sequence.
bool DecodeUtf8(const std::string& text, Hostkit::wstring& wide) {
  for (size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const int length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
    if (length == 0 || lead > 0xF4 || i + length > text.size()) {
      return false;
    }
    char32_t c = length == 1 ? lead : lead & (0x7F >> length);
    for (int k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) {
        return false;
      }
      c = (c << 6) | (next & 0x3F);
    }
    static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (c < kSmallest[length] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
      return false;
    }
    if (c >= 0x10000) {
      wide += static_cast<Hostkit::WCHAR>(0xD800 + ((c - 0x10000) >> 10));
      wide += static_cast<Hostkit::WCHAR>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      wide += static_cast<Hostkit::WCHAR>(c);
    }
    i += static_cast<size_t>(length);
  }
  return true;
}

std::string PlainText(const nlohmann::ordered_json& value) {
  if (value.is_null()) {
    return "-";
  }
  if (value.is_boolean()) {
    return value.get<bool>() ? "yes" : "no";
  }
  if (value.is_string()) {
    return value.get<std::string>();
  }
  if (value.is_array()) {
    std::string joined;
    for (const auto& item : value) {
      joined += (joined.empty() ? "" : ", ") + PlainText(item);
    }
    return joined.empty() ? "-" : joined;
  }
  return value.dump();
}

}  // namespace

std::string Narrow(const Hostkit::wstring& text) { return Hostkit::regfile::Utf8ForMessage(text); }

Hostkit::wstring Wide(const std::string& utf8) {
  Hostkit::wstring wide;
  return DecodeUtf8(utf8, wide) ? wide : Hostkit::wstring();
}

bool IsUtf8(const std::string& text) {
  Hostkit::wstring wide;
  return DecodeUtf8(text, wide);
}

std::string FromAnsi(const std::string& ansi) {
  Hostkit::wstring wide;
  if (!Hostkit::regfile::AnsiToWide(ansi, wide)) {
    // Byte by byte, so that one bad byte costs one character.
    std::string text;
    for (char c : ansi) {
      text += static_cast<unsigned char>(c) < 0x80 ? std::string(1, c) : "\xEF\xBF\xBD";
    }
    return text;
  }
  return Narrow(wide);
}

bool ToAnsi(const std::string& utf8, std::string& ansi) {
  Hostkit::wstring wide;
  Hostkit::wstring back;
  return DecodeUtf8(utf8, wide) && Hostkit::regfile::WideToAnsi(wide, ansi) &&
         Hostkit::regfile::AnsiToWide(ansi, back) && back == wide;
}

std::string HardwareAddressText(const std::string& address) {
  std::string text = address;
  for (char& c : text) {
    c = c == ':' ? '-' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return text;
}

int Done(bool ok, const std::string& what, std::ostream& out, std::ostream& err) {
  return Done(ok, what, "", out, err);
}

int Done(bool ok, const std::string& what, const std::string& reason, std::ostream& out,
         std::ostream& err) {
  if (!ok) {
    err << "hostkit: " << what << " failed" << (reason.empty() ? "" : ": " + reason) << "\n";
    return kFailed;
  }
  out << what << ": done\n";
  return kDone;
}

int Fail(const std::string& reason, std::ostream& err) {
  err << "hostkit: " << reason << "\n";
  return kFailed;
}

int UsageError(const std::string& what, std::ostream& err) {
  err << "hostkit: " << what << "\nRun with --help for more information.\n";
  return kUsage;
}

void SetJsonOutput(bool json) { jsonOutput = json; }
bool JsonOutput() { return jsonOutput; }

void Report::Add(const std::string& key, const std::string& label, nlohmann::ordered_json value) {
  json_[key] = std::move(value);
  labels_.push_back(label);
}

void Report::Print(std::ostream& out) const {
  if (JsonOutput()) {
    PrintJson(json_, out);
    return;
  }
  size_t width = 0;
  for (const std::string& label : labels_) {
    width = std::max(width, label.size());
  }
  size_t i = 0;
  for (const auto& [key, value] : json_.items()) {
    const std::string& label = labels_[i++];
    out << label << ":" << std::string(width - label.size() + 2, ' ') << PlainText(value) << "\n";
  }
}

void PrintJson(const nlohmann::ordered_json& document, std::ostream& out) {
  out << document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
}

}  // namespace hostkit_tool
