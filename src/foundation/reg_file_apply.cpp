// Applying parsed registry file operations through the seam.
//
// The wide calls are tried first. A registry that answers them with ERROR_CALL_NOT_IMPLEMENTED
// (Windows 9x) gets the rest of the file through the narrow calls, with names and text data
// converted to its ANSI code page.
#include "foundation/error_line.h"
#include "foundation/reg_file.h"
#include "foundation/reg_file_text.h"
#include "foundation/registry_calls.h"

namespace Hostkit::regfile {

namespace {

template <class Ch>
using Text = std::basic_string<Ch>;

// Names in the character type of the calls.
bool NameFor(const wstring& name, wstring& out) {
  out = name;
  return true;
}
bool NameFor(const wstring& name, std::string& out) { return WideToAnsi(name, out); }

// Value data in the form the registry of the calls' character type stores.
bool DataFor(const Operation& op, WCHAR /*tag*/, std::vector<BYTE>& out) {
  if (op.text != DataText::Ansi) {
    out = op.data;
    return true;
  }
  wstring wide;
  if (!AnsiToWide(std::string_view(reinterpret_cast<const char*>(op.data.data()), op.data.size()),
                  wide)) {
    return false;
  }
  out = Utf16Bytes(wide);
  return true;
}
bool DataFor(const Operation& op, char /*tag*/, std::vector<BYTE>& out) {
  if (op.text != DataText::Utf16) {
    out = op.data;
    return true;
  }
  std::string ansi;
  if (!WideToAnsi(Utf16Units(op.data), ansi)) {
    return false;
  }
  out.assign(ansi.begin(), ansi.end());
  return true;
}

// Deletes `path` below `parent` with everything under it, children first: the NT family
// refuses to delete a key that still has subkeys.
template <class Ch>
LONG DeleteTree(HKEY parent, const Text<Ch>& path) {
  HKEY key = nullptr;
  LONG result = registry::Calls<Ch>::Open(parent, path.c_str(), KEY_ALL_ACCESS, &key);
  if (result != ERROR_SUCCESS) {
    return result;
  }
  for (;;) {
    Ch name[256];
    DWORD size = 256;
    result = registry::Calls<Ch>::EnumKey(key, 0, name, &size);
    if (result == ERROR_NO_MORE_ITEMS) {
      break;
    }
    if (result == ERROR_SUCCESS) {
      result = DeleteTree<Ch>(key, Text<Ch>(name, size));
    }
    if (result != ERROR_SUCCESS) {
      platform::RegCloseKey(key);
      return result;
    }
  }
  platform::RegCloseKey(key);
  return registry::Calls<Ch>::DeleteKey(parent, path.c_str());
}

// Applies operations with the calls of one character type, keeping the key of the last key
// line open for the value lines below it.
template <class Ch>
class Applier {
 public:
  Applier() = default;
  Applier(const Applier&) = delete;
  Applier& operator=(const Applier&) = delete;
  ~Applier() { CloseKey(); }

  LONG Apply(const Operation& op) {
    switch (op.kind) {
      case Operation::Kind::CreateKey:
        return OpenKey(op);
      case Operation::Kind::DeleteKey:
        return DeleteKey(op);
      case Operation::Kind::SetValue:
        return SetValue(op);
      case Operation::Kind::DeleteValue:
        return DeleteValue(op);
    }
    return ERROR_INVALID_PARAMETER;
  }

 private:
  LONG OpenKey(const Operation& op) {
    if (key_ != nullptr && root_ == op.root && path_ == op.path) {
      return ERROR_SUCCESS;
    }
    CloseKey();
    if (op.path.empty()) {
      key_ = op.root;  // a root is used as it is and never closed
    } else {
      Text<Ch> path;
      if (!NameFor(op.path, path)) {
        return ERROR_NO_UNICODE_TRANSLATION;
      }
      HKEY key = nullptr;
      const LONG result = registry::Calls<Ch>::Create(op.root, path.c_str(), &key);
      if (result != ERROR_SUCCESS) {
        return result;
      }
      key_ = key;
      ownsKey_ = true;
    }
    root_ = op.root;
    path_ = op.path;
    return ERROR_SUCCESS;
  }

  LONG DeleteKey(const Operation& op) {
    CloseKey();
    Text<Ch> path;
    if (!NameFor(op.path, path)) {
      return ERROR_NO_UNICODE_TRANSLATION;
    }
    const LONG result = DeleteTree<Ch>(op.root, path);
    return result == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : result;
  }

  LONG SetValue(const Operation& op) {
    Text<Ch> name;
    std::vector<BYTE> data;
    if (!NameFor(op.name, name) || !DataFor(op, Ch{}, data)) {
      return ERROR_NO_UNICODE_TRANSLATION;
    }
    const LONG result = OpenKey(op);
    if (result != ERROR_SUCCESS) {
      return result;
    }
    const auto size = static_cast<DWORD>(data.size());
    // What follows the data decides how a string is stored. The NT family (wide calls) reads
    // one character past it and counts it as a forgotten terminator when it is zero, so a
    // character that is not zero keeps the stored bytes exactly those of the file. Windows 9x
    // (narrow calls) stores a REG_SZ up to its first zero, so there a zero must follow.
    data.insert(data.end(), sizeof(Ch), sizeof(Ch) == 1 ? BYTE{0} : BYTE{0xFF});
    return registry::Calls<Ch>::Set(key_, name.c_str(), op.type, data.data(), size);
  }

  LONG DeleteValue(const Operation& op) {
    Text<Ch> name;
    if (!NameFor(op.name, name)) {
      return ERROR_NO_UNICODE_TRANSLATION;
    }
    LONG result = OpenKey(op);
    if (result == ERROR_SUCCESS) {
      result = registry::Calls<Ch>::DeleteValue(key_, name.c_str());
    }
    return result == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : result;
  }

  void CloseKey() {
    if (ownsKey_) {
      platform::RegCloseKey(key_);
    }
    key_ = nullptr;
    ownsKey_ = false;
  }

  HKEY key_ = nullptr;
  bool ownsKey_ = false;
  HKEY root_ = nullptr;
  wstring path_;
};

// The value name as the file writes it, "@" for the default value. Built by appending: GCC 12
// at -O3 reports a false overlap (-Wrestrict) for `"\"" + temporary`, which inserts at the front.
std::string ValueForMessage(const wstring& name) {
  if (name.empty()) {
    return "@";
  }
  std::string quoted = "\"";
  quoted += Utf8ForMessage(name);
  quoted += '"';
  return quoted;
}

std::string DescribeFailure(const Operation& op, LONG result) {
  const std::string key = KeyForMessage(op.root, op.path);
  const std::string value = ValueForMessage(op.name);

  std::string what;
  switch (op.kind) {
    case Operation::Kind::CreateKey:
      what = "cannot create key " + key;
      break;
    case Operation::Kind::DeleteKey:
      what = "cannot delete key " + key;
      break;
    case Operation::Kind::SetValue:
      what = "cannot set value " + value + " in " + key;
      break;
    case Operation::Kind::DeleteValue:
      what = "cannot delete value " + value + " in " + key;
      break;
  }
  return what + " (error " + std::to_string(result) + ")";
}

}  // namespace

bool ApplyRegFile(const std::vector<Operation>& operations, const std::string& fileName,
                  std::string& error) {
  try {
    Applier<WCHAR> wide;
    Applier<char> narrow;
    bool useNarrow = false;
    for (const Operation& op : operations) {
      LONG result = ERROR_CALL_NOT_IMPLEMENTED;
      if (!useNarrow) {
        result = wide.Apply(op);
        useNarrow = result == ERROR_CALL_NOT_IMPLEMENTED;
      }
      if (useNarrow) {
        result = narrow.Apply(op);
      }
      if (result != ERROR_SUCCESS) {
        error = ErrorLine(fileName, op.line, DescribeFailure(op, result));
        return false;
      }
    }
    return true;
  } catch (const std::exception&) {
    error = ErrorLine(fileName, operations.empty() ? 1 : operations.front().line,
                      "not enough memory to apply the file");
    return false;
  }
}

}  // namespace Hostkit::regfile
