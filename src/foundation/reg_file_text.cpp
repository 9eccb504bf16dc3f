// Root names and the text conversions of registry files.
#include "foundation/reg_file_text.h"

#include <climits>

#include "platform/text.h"

namespace Hostkit::regfile {

namespace {

struct RootEntry {
  HKEY root;
  const char* name;
  const char* shortName;  // null when the root has none
};

const RootEntry* Roots() {
  static const RootEntry roots[] = {
      {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE", "HKLM"},
      {HKEY_CURRENT_USER, "HKEY_CURRENT_USER", "HKCU"},
      {HKEY_CLASSES_ROOT, "HKEY_CLASSES_ROOT", "HKCR"},
      {HKEY_USERS, "HKEY_USERS", "HKU"},
      {HKEY_CURRENT_CONFIG, "HKEY_CURRENT_CONFIG", "HKCC"},
      {HKEY_DYN_DATA, "HKEY_DYN_DATA", nullptr},
      {HKEY_PERFORMANCE_DATA, "HKEY_PERFORMANCE_DATA", nullptr},
      {nullptr, nullptr, nullptr},
  };
  return roots;
}

WCHAR AsciiUpper(WCHAR c) { return (c >= u'a' && c <= u'z') ? static_cast<WCHAR>(c - 32) : c; }

bool SameAsciiNoCase(wstring_view text, const char* ascii) {
  size_t i = 0;
  for (; ascii[i] != '\0'; ++i) {
    if (i >= text.size() || AsciiUpper(text[i]) != static_cast<WCHAR>(ascii[i])) {
      return false;
    }
  }
  return i == text.size();
}

}  // namespace

HKEY RootFromName(wstring_view name) {
  for (const RootEntry* entry = Roots(); entry->root != nullptr; ++entry) {
    if (SameAsciiNoCase(name, entry->name) ||
        (entry->shortName != nullptr && SameAsciiNoCase(name, entry->shortName))) {
      return entry->root;
    }
  }
  return nullptr;
}

std::string RootName(HKEY root) {
  for (const RootEntry* entry = Roots(); entry->root != nullptr; ++entry) {
    if (entry->root == root) {
      return entry->name;
    }
  }
  return {};
}

bool AnsiToWide(std::string_view ansi, wstring& wide) {
  wide.clear();
  if (ansi.empty()) {
    return true;
  }
  if (ansi.size() > INT_MAX) {
    return false;
  }
  const int length = static_cast<int>(ansi.size());
  const int needed = platform::MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, nullptr, 0);
  if (needed <= 0) {
    return false;
  }
  wide.resize(static_cast<size_t>(needed));
  const int written =
      platform::MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, wide.data(), needed);
  wide.resize(written > 0 ? static_cast<size_t>(written) : 0);
  return written > 0;
}

bool WideToAnsi(wstring_view wide, std::string& ansi) {
  ansi.clear();
  if (wide.empty()) {
    return true;
  }
  if (wide.size() > INT_MAX) {
    return false;
  }
  const int length = static_cast<int>(wide.size());
  const int needed =
      platform::WideCharToMultiByte(CP_ACP, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) {
    return false;
  }
  ansi.resize(static_cast<size_t>(needed));
  const int written = platform::WideCharToMultiByte(CP_ACP, 0, wide.data(), length, ansi.data(),
                                                    needed, nullptr, nullptr);
  ansi.resize(written > 0 ? static_cast<size_t>(written) : 0);
  return written > 0;
}

std::string Utf8ForMessage(wstring_view wide) {
  std::string out;
  for (size_t i = 0; i < wide.size(); ++i) {
    char32_t c = static_cast<char16_t>(wide[i]);
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < wide.size() &&
        static_cast<char16_t>(wide[i + 1]) >= 0xDC00 &&
        static_cast<char16_t>(wide[i + 1]) <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<char16_t>(wide[i + 1]) - 0xDC00);
      ++i;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += static_cast<char>(0xE0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (c >> 18));
      out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

std::vector<BYTE> Utf16Bytes(wstring_view text) {
  std::vector<BYTE> bytes;
  bytes.reserve(text.size() * 2);
  for (WCHAR unit : text) {
    const auto value = static_cast<char16_t>(unit);
    bytes.push_back(static_cast<BYTE>(value & 0xFF));
    bytes.push_back(static_cast<BYTE>(value >> 8));
  }
  return bytes;
}

wstring Utf16Units(const std::vector<BYTE>& bytes) {
  wstring text;
  text.reserve(bytes.size() / 2);
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text += static_cast<WCHAR>(bytes[i] | (bytes[i + 1] << 8));
  }
  return text;
}

std::string KeyForMessage(HKEY root, wstring_view path) {
  std::string text = RootName(root);
  if (!path.empty()) {
    text += '\\';
    text += Utf8ForMessage(path);
  }
  return text;
}

}  // namespace Hostkit::regfile
