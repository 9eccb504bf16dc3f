// Writing the registry below a set of roots as a registry file that reads back into the same
// tree: every key gets its own key line (so empty keys survive), values keep their enumeration
// order, and a value is written in the quoted or dword form only when that form carries exactly
// its stored bytes; everything else is written as hex(N).

#include "foundation/reg_file.h"
#include "foundation/reg_file_format.h"
#include "foundation/reg_file_text.h"
#include "foundation/registry_calls.h"

namespace Hostkit::regfile {

namespace {

template <class Ch>
using Text = std::basic_string<Ch>;

LONG EnumValue(HKEY key, DWORD index, char* name, DWORD* nameSize, DWORD* type, BYTE* data,
               DWORD* dataSize) {
  return platform::RegEnumValueA(key, index, name, nameSize, nullptr, type, data, dataSize);
}
LONG EnumValue(HKEY key, DWORD index, WCHAR* name, DWORD* nameSize, DWORD* type, BYTE* data,
               DWORD* dataSize) {
  return platform::RegEnumValueW(key, index, name, nameSize, nullptr, type, data, dataSize);
}

struct Value {
  DWORD type = REG_NONE;
  std::vector<BYTE> data;
};

template <class Ch>
void AppendAscii(Text<Ch>& out, std::string_view ascii) {
  for (char c : ascii) {
    out += static_cast<Ch>(c);
  }
}

// The text a REG_SZ value holds when its bytes are exactly that text and one terminator, in
// the registry's own encoding; false when the quoted form would not read back the same bytes.
bool QuotableText(const std::vector<BYTE>& data, wstring& text) {
  if (data.size() < 2 || data.size() % 2 != 0) {
    return false;
  }
  text = Utf16Units(data);
  if (text.back() != u'\0') {
    return false;
  }
  text.pop_back();
  return text.find(u'\0') == wstring::npos;
}
bool QuotableText(const std::vector<BYTE>& data, std::string& text) {
  if (data.empty() || data.back() != 0) {
    return false;
  }
  text.assign(data.begin(), data.end() - 1);
  if (text.find('\0') != std::string::npos) {
    return false;
  }
  // The reader converts a REGEDIT4 file to UTF-16 and a 9x registry takes the text back in
  // ANSI: only text that survives both conversions may be written as it is.
  wstring wide;
  std::string back;
  return AnsiToWide(text, wide) && WideToAnsi(wide, back) && back == text;
}

template <class Ch>
class Writer {
 public:
  // REGEDIT4 text for the narrow calls, 5.00 for the wide ones.
  static constexpr bool kVersion5 = sizeof(Ch) == 2;

  LONG Write(const std::vector<HKEY>& roots, std::string& error) {
    AppendAscii<Ch>(out_, FileHeader(kVersion5));
    for (HKEY root : roots) {
      const LONG result = WriteKey(root, Text<Ch>());
      if (result != ERROR_SUCCESS) {
        error = failure_ + " (error " + std::to_string(result) + ")";
        return result;
      }
    }
    return ERROR_SUCCESS;
  }

  std::string Bytes() const {
    if constexpr (kVersion5) {
      std::string bytes(kUtf16Bom);
      AppendUtf16Le(bytes, out_);
      return bytes;
    } else {
      return out_;
    }
  }

 private:
  LONG WriteKey(HKEY root, const Text<Ch>& path) {
    HKEY key = root;
    if (!path.empty()) {
      const LONG result = registry::Calls<Ch>::Open(root, path.c_str(), KEY_READ, &key);
      if (result != ERROR_SUCCESS) {
        failure_ = "cannot open " + Describe(root, path);
        return result;
      }
    }
    std::vector<Text<Ch>> subkeys;
    LONG result = WriteValues(root, key, path);
    if (result == ERROR_SUCCESS) {
      result = ListSubkeys(root, key, path, subkeys);
    }
    if (key != root) {
      platform::RegCloseKey(key);
    }
    for (size_t i = 0; result == ERROR_SUCCESS && i < subkeys.size(); ++i) {
      Text<Ch> child = path;
      if (!child.empty()) {
        child += static_cast<Ch>('\\');
      }
      result = WriteKey(root, child + subkeys[i]);
    }
    return result;
  }

  LONG WriteValues(HKEY root, HKEY key, const Text<Ch>& path) {
    out_ += static_cast<Ch>('[');
    AppendAscii<Ch>(out_, RootName(root));
    if (!path.empty()) {
      out_ += static_cast<Ch>('\\');
      out_ += path;
    }
    AppendAscii<Ch>(out_, "]\r\n");
    std::vector<Ch> name(16384);
    Value value;
    value.data.resize(256);
    for (DWORD index = 0;; ++index) {
      DWORD nameSize = static_cast<DWORD>(name.size());
      DWORD dataSize = static_cast<DWORD>(value.data.size());
      LONG result =
          EnumValue(key, index, name.data(), &nameSize, &value.type, value.data.data(), &dataSize);
      if (result == ERROR_MORE_DATA && dataSize > value.data.size()) {
        value.data.resize(dataSize);
        nameSize = static_cast<DWORD>(name.size());
        result = EnumValue(key, index, name.data(), &nameSize, &value.type, value.data.data(),
                           &dataSize);
      }
      if (result == ERROR_NO_MORE_ITEMS) {
        break;
      }
      if (result != ERROR_SUCCESS) {
        failure_ = "cannot read the values of " + Describe(root, path);
        return result;
      }
      Value stored{value.type,
                   std::vector<BYTE>(value.data.begin(), value.data.begin() + dataSize)};
      WriteValue(Text<Ch>(name.data(), nameSize), stored);
    }
    AppendAscii<Ch>(out_, "\r\n");
    return ERROR_SUCCESS;
  }

  LONG ListSubkeys(HKEY root, HKEY key, const Text<Ch>& path, std::vector<Text<Ch>>& subkeys) {
    for (DWORD index = 0;; ++index) {
      Ch name[256];
      DWORD size = 256;
      const LONG result = registry::Calls<Ch>::EnumKey(key, index, name, &size);
      if (result == ERROR_NO_MORE_ITEMS) {
        return ERROR_SUCCESS;
      }
      if (result != ERROR_SUCCESS) {
        failure_ = "cannot list the subkeys of " + Describe(root, path);
        return result;
      }
      subkeys.emplace_back(name, size);
    }
  }

  void WriteValue(const Text<Ch>& name, const Value& value) {
    const size_t lineStart = out_.size();
    if (name.empty()) {
      out_ += static_cast<Ch>('@');
    } else {
      AppendQuoted(name);
    }
    out_ += static_cast<Ch>('=');
    Text<Ch> text;
    if (value.type == REG_SZ && QuotableText(value.data, text)) {
      AppendQuoted(text);
    } else if (value.type == REG_DWORD && value.data.size() == 4) {
      AppendAscii<Ch>(out_, DwordText(value.data[3], value.data[2], value.data[1], value.data[0]));
    } else {
      AppendAscii<Ch>(out_, HexValueText(value.type, value.data.data(), value.data.size(),
                                         out_.size() - lineStart));
    }
    AppendAscii<Ch>(out_, "\r\n");
  }

  // REGEDIT4 escapes line breaks, while 5.00 files carry them raw inside the quotes.
  void AppendQuoted(const Text<Ch>& text) {
    out_ += static_cast<Ch>('"');
    out_ += EscapedText<Ch>(text, !kVersion5);
    out_ += static_cast<Ch>('"');
  }

  static std::string Describe(HKEY root, const Text<Ch>& path) {
    if constexpr (kVersion5) {
      return KeyForMessage(root, path);
    } else {
      wstring wide;
      return KeyForMessage(root, AnsiToWide(path, wide) ? wstring_view(wide) : wstring_view());
    }
  }

  Text<Ch> out_;
  std::string failure_;
};

}  // namespace

bool WriteRegFile(const std::vector<HKEY>& roots, std::string& bytes, std::string& error) {
  try {
    Writer<WCHAR> wide;
    LONG result = wide.Write(roots, error);
    if (result == ERROR_SUCCESS) {
      bytes = wide.Bytes();
      return true;
    }
    if (result != ERROR_CALL_NOT_IMPLEMENTED) {
      return false;
    }
    Writer<char> narrow;
    result = narrow.Write(roots, error);
    if (result == ERROR_SUCCESS) {
      bytes = narrow.Bytes();
      error.clear();
      return true;
    }
    return false;
  } catch (const std::exception& e) {
    error = e.what();
    return false;
  }
}

}  // namespace Hostkit::regfile
